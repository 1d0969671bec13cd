#include "platform/components/DispatchObject_win32.h"

#include "base/RuntimeError.h"
#include "platform/components/Variants_win32.h"
#include "platform/system/SystemCodePage.h"

#include <optional>
#include <string_view>
#include <utility>

namespace {

class DispatchObject : public ComponentObject
{
public:
    DispatchObject(IDispatch* dispatch, std::string name) : m_dispatch(dispatch), m_name(std::move(name)) {}
    DispatchObject(const DispatchObject&) = delete;
    DispatchObject& operator=(const DispatchObject&) = delete;
    ~DispatchObject() override { m_dispatch->Release(); }

    ComponentValue call(std::string_view member, std::vector<ComponentValue> arguments) override;

private:
    [[noreturn]] void fail(HRESULT result, EXCEPINFO& exception, std::string_view member) const;

    IDispatch* m_dispatch;
    std::string m_name;
};

/// The number that a component raised an error with.
ErrorNumber raisedNumber(const EXCEPINFO& exception)
{
    // Errors of the classic languages are 0x800A0000 and their number.
    constexpr std::uint32_t classicFacility = 0x800A0000;
    constexpr std::uint32_t facility = 0xFFFF0000;
    const auto code = static_cast<std::uint32_t>(exception.scode);
    if (exception.wCode != 0)
        return static_cast<ErrorNumber>(exception.wCode);
    return static_cast<ErrorNumber>((code & facility) == classicFacility ? code & ~facility : code);
}

/// What a component said about an error that it raised, as it follows the place; its texts are freed.
std::string takeDescription(EXCEPINFO& exception)
{
    std::string description;
    if (exception.bstrDescription)
        description = ": " + bytesOfText(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return description;
}

/// The error that a refused call is; nothing for a result that has no number of its own.
std::optional<ErrorNumber> numberOf(HRESULT result)
{
    switch (result) {
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
        return ErrorNumber::MemberNotSupported;
    case DISP_E_TYPEMISMATCH:
        return ErrorNumber::TypeMismatch;
    case DISP_E_OVERFLOW:
        return ErrorNumber::Overflow;
    case E_OUTOFMEMORY:
        return ErrorNumber::OutOfMemory;
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
        return ErrorNumber::InvalidProcedureCall;
    default:
        return {};
    }
}

void DispatchObject::fail(HRESULT result, EXCEPINFO& exception, std::string_view member) const
{
    const std::string place = m_name + ", " + std::string(member);
    if (result == DISP_E_EXCEPTION) {
        if (exception.pfnDeferredFillIn)
            exception.pfnDeferredFillIn(&exception);
        throw RuntimeError(raisedNumber(exception), place + takeDescription(exception));
    }
    if (const std::optional<ErrorNumber> number = numberOf(result))
        throw RuntimeError(*number, place);
    throw RuntimeError(ErrorNumber::InternalError, place + ": " + std::to_string(static_cast<std::int32_t>(result)));
}

ComponentValue DispatchObject::call(std::string_view member, std::vector<ComponentValue> arguments)
{
    EXCEPINFO exception{};
    std::wstring name = wideOf(member);
    LPOLESTR names = name.data();
    DISPID id = 0;
    HRESULT result = m_dispatch->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(result))
        fail(result, exception, member);
    VariantArguments passed(arguments);
    DISPPARAMS parameters = passed.parameters();
    Variant answer;
    UINT wrongArgument = 0;
    result = m_dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                                answer.get(), &exception, &wrongArgument);
    if (FAILED(result))
        fail(result, exception, member);
    passed.takeBack();
    return valueOf(*answer.get());
}

} // namespace

ObjectRef adoptDispatch(IDispatch* dispatch, std::string name)
{
    return std::make_shared<DispatchObject>(dispatch, std::move(name));
}
