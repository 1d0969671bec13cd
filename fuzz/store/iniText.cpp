#include "store/IniText.h"

#include "Check.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

namespace {

/// Whether `after` is `before` with characters put in, and with none taken out but from inside one line.
bool keepsItsLines(std::string_view before, std::string_view after)
{
    const auto differs = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    before.remove_prefix(static_cast<std::size_t>(differs.first - before.begin()));
    after.remove_prefix(static_cast<std::size_t>(differs.second - after.begin()));
    while (!before.empty() && !after.empty() && before.back() == after.back()) {
        before.remove_suffix(1);
        after.remove_suffix(1);
    }
    return before.find_first_of("\r\n") == std::string_view::npos;
}

void checkOtherSections(const IniText& before, const IniText& after, std::string_view section)
{
    for (const std::string& name : before.sectionNames())
        check(isSameSection(name, section) || before.lines(name) == after.lines(name));
}

/// One line more than before, or the same number with at most one of them changed.
void checkLines(const std::vector<std::string>& before, std::vector<std::string> after)
{
    check(after.size() == before.size() || after.size() == before.size() + 1);
    after.resize(before.size());
    std::size_t changed = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        changed += before[i] == after[i] ? 0 : 1;
    check(changed <= 1);
}

void setAndCheck(const IniText& before, std::string_view section, std::string_view key, std::string_view value)
{
    IniText after = before;
    if (raisedBy([&] { after.setValue(section, key, value); })) {
        check(after.bytes() == before.bytes());
        return;
    }
    check(after.value(section, key) == value);
    check(keepsItsLines(before.bytes(), after.bytes()));
    checkOtherSections(before, after, section);
    checkLines(before.lines(section), after.lines(section));

    IniText again(after.bytes()); // what was written is not damaged
    again.setValue(section, key, value);
    check(again.bytes() == after.bytes());
}

void setSeveralAndCheck(const IniText& before, std::string_view section, std::string_view key, std::string_view value)
{
    IniText after = before;
    if (raisedBy([&] { after.setValues(section, {{"Host", value}, {key, "x"}}); })) {
        check(after.bytes() == before.bytes());
        return;
    }
    checkOtherSections(before, after, section);
    const std::vector<std::string> lines = after.lines(section);
    check(after.value(section, key) == "x");
    check(isSameSection(key, "Host") || (lines.size() > 1 && after.value(section, "Host") == value));
    const std::string bytes = after.bytes();
    after.setValues(section, {{"Host", value}, {key, "x"}});
    check(after.bytes() == bytes);
}

void removeAndCheck(const IniText& before, std::string_view section)
{
    IniText after = before;
    after.removeSection(section);
    checkOtherSections(before, after, section);
    for (const std::string& name : after.sectionNames())
        check(!isSameSection(name, section));
    check(after.lines(section).empty());
    check(after.sectionNames().size() + 1 >= before.sectionNames().size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    std::string section = input.ConsumeRandomLengthString(20);
    const std::string key = input.ConsumeRandomLengthString(20);
    const std::string value = input.ConsumeRandomLengthString(40);
    const std::size_t whichSection = input.ConsumeIntegral<std::uint8_t>();
    IniText before;
    if (raisedBy([&] { before = IniText(input.ConsumeRemainingBytesAsString()); }))
        return 0;

    const std::vector<std::string> names = before.sectionNames();
    if (whichSection < names.size())
        section = names[whichSection]; // one that is there
    setAndCheck(before, section, key, value);
    setSeveralAndCheck(before, section, key, value);
    removeAndCheck(before, section);
    for (const std::string& line : before.lines(section)) // every line gives its key and its value
        if (const auto equals = line.find('=');
            before.value(section, line.substr(0, equals)) == line.substr(equals + 1))
            setAndCheck(before, section, line.substr(0, equals), value);
    return 0;
}
