#pragma once

#include "platform/components/Component.h"

#include <windows.h>

#include <oleauto.h>

#include <memory>
#include <string>
#include <vector>

/// A VARIANT that is cleared at its end.
class Variant
{
public:
    Variant() { VariantInit(&m_variant); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&m_variant); }

    VARIANT* get() { return &m_variant; }
    VARIANT* operator->() { return &m_variant; }

private:
    VARIANT m_variant;
};

/// The bytes of a text of the system, in the host's code page. @param text  may be null
std::string bytesOfText(BSTR text);
/// Changes the code page of all texts, here and for the libraries of this process, to one that `CodePageMap` knows; at
/// first it is the system's.
void useTextCodePage(std::string_view name);

/// What a VARIANT holds; it stays its owner.
/// @throws RuntimeError TypeMismatch for what a component value cannot be
ComponentValue valueOf(VARIANT& variant);

/// The arguments of one call as the system wants them: last one first, and lists as arrays that the component may
/// change or replace.
class VariantArguments
{
public:
    /// @param values  outlive this
    /// @throws RuntimeError TypeMismatch for an object: they only come, they do not go
    explicit VariantArguments(const std::vector<ComponentValue>& values);
    VariantArguments(const VariantArguments&) = delete;
    VariantArguments& operator=(const VariantArguments&) = delete;
    ~VariantArguments();

    /// Valid as long as this.
    DISPPARAMS parameters();

    /// Carries what the component did to its lists back into those of the caller.
    /// @throws RuntimeError TypeMismatch when a list is none of component values any more
    void takeBack();

private:
    class TextArray;

    void fill(VARIANT& variant, const ComponentValue& value);

    const std::vector<ComponentValue>& m_values;
    std::vector<Variant> m_variants;
    std::vector<VARIANT> m_plain;
    std::vector<std::unique_ptr<TextArray>> m_arrays; ///< in the order of the caller's arguments
};
