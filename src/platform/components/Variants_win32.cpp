#include "platform/components/Variants_win32.h"

#include "base/RuntimeError.h"
#include "platform/components/DispatchObject_win32.h"
#include "platform/system/CodePageMap.h"
#include "platform/system/SystemCodePage.h"

#include <string_view>

namespace {

void demandMemory(const void* pointer)
{
    if (!pointer)
        throw RuntimeError(ErrorNumber::OutOfMemory);
}

/// Of all texts that components are handed or give.
const CodePageMap& textCodePage(std::string_view changedTo = {})
{
    static std::shared_ptr<const CodePageMap> map = CodePageMap::named(systemCodePage());
    if (const auto changed = CodePageMap::named(changedTo))
        map = changed;
    return *map;
}

BSTR newText(std::string_view bytes)
{
    const std::u16string text16 = textCodePage().toText(bytes);
    const std::wstring wide(text16.begin(), text16.end());
    BSTR text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    demandMemory(text);
    return text;
}

ComponentValue elementOf(SAFEARRAY* array, VARTYPE type, LONG index)
{
    Variant element;
    HRESULT result = DISP_E_TYPEMISMATCH;
    if (type == VT_VARIANT) {
        result = SafeArrayGetElement(array, &index, element.get());
    } else if (type == VT_BSTR) {
        result = SafeArrayGetElement(array, &index, &element->bstrVal);
        if (SUCCEEDED(result))
            element->vt = VT_BSTR;
    }
    if (FAILED(result))
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return valueOf(*element.get());
}

ComponentValue::List listOf(SAFEARRAY* array)
{
    auto list = std::make_shared<std::vector<ComponentValue>>();
    if (!array)
        return list;
    VARTYPE type = VT_EMPTY;
    LONG first = 0;
    LONG last = -1;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)))
        throw RuntimeError(ErrorNumber::TypeMismatch);
    for (LONG index = first; index <= last; ++index)
        list->push_back(elementOf(array, type, index));
    return list;
}

} // namespace

void useTextCodePage(std::string_view name)
{
    // What a plugin's own library goes by, which has no other way to learn it.
    if (textCodePage(name).name() == name)
        SetEnvironmentVariableW(L"QRVRC_CODE_PAGE", wideOf(name).c_str());
}

std::string bytesOfText(BSTR text)
{
    const std::wstring_view wide = text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view();
    return textCodePage().toBytes(std::u16string(wide.begin(), wide.end()));
}

ComponentValue valueOf(VARIANT& variant)
{
    if (variant.vt == VT_EMPTY || variant.vt == VT_NULL)
        return {};
    if (variant.vt == VT_BOOL)
        return variant.boolVal != VARIANT_FALSE;
    if (variant.vt == VT_BSTR)
        return bytesOfText(variant.bstrVal);
    if (variant.vt == VT_DISPATCH) {
        if (!variant.pdispVal)
            return {};
        variant.pdispVal->AddRef();
        return adoptDispatch(variant.pdispVal, "object");
    }
    if (variant.vt & VT_ARRAY)
        return listOf(variant.vt & VT_BYREF ? *variant.pparray : variant.parray);
    Variant number; // everything else that is a number, or refers to one of the above
    if (variant.vt & VT_BYREF) {
        if (FAILED(VariantCopyInd(number.get(), &variant)) || (number->vt & VT_BYREF))
            throw RuntimeError(ErrorNumber::TypeMismatch);
        return valueOf(*number.get());
    }
    if (FAILED(VariantChangeType(number.get(), &variant, 0, VT_I4)))
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return static_cast<std::int32_t>(number->lVal);
}

/// A SAFEARRAY of texts that is destroyed at its end.
class VariantArguments::TextArray
{
public:
    explicit TextArray(const std::vector<ComponentValue>& values)
        : m_array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(values.size())))
    {
        demandMemory(m_array);
        try {
            for (std::size_t index = 0; index < values.size(); ++index) {
                auto place = static_cast<LONG>(index);
                BSTR text = newText(values[index].toString());
                const HRESULT result = SafeArrayPutElement(m_array, &place, text); // which copies it
                SysFreeString(text);
                if (FAILED(result))
                    throw RuntimeError(ErrorNumber::OutOfMemory);
            }
        } catch (...) {
            SafeArrayDestroy(m_array);
            throw;
        }
    }
    TextArray(const TextArray&) = delete;
    TextArray& operator=(const TextArray&) = delete;
    ~TextArray()
    {
        if (m_array)
            SafeArrayDestroy(m_array);
    }

    /// For by-reference arguments: the component may put another array in its place.
    SAFEARRAY** place() { return &m_array; }

private:
    SAFEARRAY* m_array;
};

VariantArguments::VariantArguments(const std::vector<ComponentValue>& values)
    : m_values(values),
      m_variants(values.size())
{
    for (std::size_t index = 0; index < values.size(); ++index)
        fill(*m_variants[values.size() - 1 - index].get(), values[index]);
    for (Variant& variant : m_variants)
        m_plain.push_back(*variant.get()); // borrowed: the variants stay their owners
}

VariantArguments::~VariantArguments() = default;

DISPPARAMS VariantArguments::parameters()
{
    return {.rgvarg = m_plain.data(),
            .rgdispidNamedArgs = nullptr,
            .cArgs = static_cast<UINT>(m_plain.size()),
            .cNamedArgs = 0};
}

void VariantArguments::takeBack()
{
    std::size_t next = 0;
    for (const ComponentValue& value : m_values) {
        if (std::holds_alternative<ComponentValue::List>(value.variant()))
            *value.toList() = *listOf(*m_arrays[next++]->place());
    }
}

void VariantArguments::fill(VARIANT& variant, const ComponentValue& value)
{
    if (const auto* truth = std::get_if<bool>(&value.variant())) {
        variant.vt = VT_BOOL;
        variant.boolVal = *truth ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const auto* number = std::get_if<std::int32_t>(&value.variant())) {
        variant.vt = VT_I4;
        variant.lVal = *number;
    } else if (const auto* text = std::get_if<std::string>(&value.variant())) {
        variant.bstrVal = newText(*text);
        variant.vt = VT_BSTR;
    } else if (std::holds_alternative<ComponentValue::List>(value.variant())) {
        m_arrays.push_back(std::make_unique<TextArray>(*value.toList()));
        variant.vt = VT_ARRAY | VT_BSTR | VT_BYREF; // which VariantClear leaves alone
        variant.pparray = m_arrays.back()->place();
    } else if (!value.isEmpty()) {
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
}
