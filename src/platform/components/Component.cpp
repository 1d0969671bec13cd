#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

namespace {

[[noreturn]] void mismatch()
{
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

constexpr std::int32_t numberOfTrue = -1;

} // namespace

ComponentValue ComponentValue::listOf(const std::vector<std::string>& texts)
{
    return std::make_shared<std::vector<ComponentValue>>(texts.begin(), texts.end());
}

bool ComponentValue::toBoolean() const
{
    if (const bool* value = std::get_if<bool>(&m_value))
        return *value;
    if (const std::string* text = std::get_if<std::string>(&m_value)) {
        if (equalsIgnoringCase(*text, "True"))
            return true;
        if (equalsIgnoringCase(*text, "False"))
            return false;
    }
    return toInt32() != 0;
}

std::int32_t ComponentValue::toInt32() const
{
    if (isEmpty())
        return 0;
    if (const bool* value = std::get_if<bool>(&m_value))
        return *value ? numberOfTrue : 0;
    if (const std::int32_t* value = std::get_if<std::int32_t>(&m_value))
        return *value;
    if (const std::string* text = std::get_if<std::string>(&m_value))
        return ::toInt32(*text);
    mismatch();
}

std::string ComponentValue::toString() const
{
    if (isEmpty())
        return {};
    if (const bool* value = std::get_if<bool>(&m_value))
        return *value ? "True" : "False";
    if (const std::int32_t* value = std::get_if<std::int32_t>(&m_value))
        return std::to_string(*value);
    if (const std::string* text = std::get_if<std::string>(&m_value))
        return *text;
    mismatch();
}

ComponentValue::List ComponentValue::toList() const
{
    if (isEmpty())
        return std::make_shared<std::vector<ComponentValue>>();
    if (const List* list = std::get_if<List>(&m_value); list && *list)
        return *list;
    mismatch();
}

ObjectRef ComponentValue::toObject() const
{
    if (const ObjectRef* object = std::get_if<ObjectRef>(&m_value); object && *object)
        return *object;
    mismatch();
}

ComponentFault faultIn(const std::function<void()>& body)
{
    try {
        body();
        return std::nullopt;
    } catch (const std::exception& error) {
        const std::string text = error.what();
        const std::string sentence = std::string(errorSentence(ErrorNumber::CannotCreateObject)) + ": ";
        return text.starts_with(sentence) ? text.substr(sentence.size())
                                          : text; // it says nothing that the rest does not
    }
}
