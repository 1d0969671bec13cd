#include "admins/AdminRecords.h"

#include "Check.h"
#include "base/Base64.h"

#include <algorithm>
#include <string>

namespace {

/// More than an input has room for.
constexpr std::size_t most = 10'000;

using Kind = ChecklistRow::Kind;

void checkAccounts(std::string_view text)
{
    const AdminsText parts = splitAdminsText(text, 1000);
    for (const auto* views : {&parts.accounts, &parts.log}) {
        check(views->size() <= 1000);
        for (const std::string_view view : *views) {
            check(!view.empty() && view.find("[-]") == std::string_view::npos);
            check(liesIn(text, view));
        }
    }
    for (const std::string_view element : parts.accounts) {
        AdminAccount account;
        const auto error = raisedBy([&] { account = decodeAdminAccount(element); });
        check(!error || error == ErrorNumber::TypeMismatch || error == ErrorNumber::SubscriptOutOfRange);
        check(error || std::count(element.begin(), element.end(), '|') >= 3);
    }
}

/// The rows of the sections that can be read.
Checklist readableRows(std::string_view body)
{
    Checklist rows;
    for (const std::string_view section : splitChecklist(body, most)) {
        Checklist decoded;
        const auto error = raisedBy([&] { decoded = decodeSection(section, most); });
        check(error.has_value() == (section.find("||") == std::string_view::npos));
        check(!error || error == ErrorNumber::SubscriptOutOfRange);
        check(error ||
              (decoded.size() >= 2 && decoded.front().kind == Kind::Section && decoded.back() == ChecklistRow()));
        for (ChecklistRow& row : decoded) {
            check(row.kind == Kind::Section || row.heading.empty());
            check(row.name.find_first_of("|\t") == std::string::npos || row.kind == Kind::Section);
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

/// A click changes the privilege in its row, takes away others of its section, and grants none.
void checkToggling(const Checklist& rows, std::size_t row)
{
    const Checklist after = toggled(rows, row);
    check(after.size() == rows.size());
    std::size_t first = row;
    std::size_t end = row;
    while (first > 0 && rows[first - 1].kind == Kind::Privilege)
        --first;
    while (end < rows.size() && rows[end].kind == Kind::Privilege)
        ++end;
    for (std::size_t at = 0; at < rows.size(); ++at) {
        if (after[at] == rows[at])
            continue;
        check(at >= first && at < end && after[at].name == rows[at].name);
        check(at == row || !after[at].granted);
    }
    check(row >= rows.size() || (after[row] != rows[row]) == (rows[row].kind == Kind::Privilege));
    const Checklist again = withEdits(rows, rows, rows);
    check(again == rows);
}

void checkText(const Checklist& rows, std::string_view name)
{
    const AccountFields fields{std::string(name), "pw", {}};
    const std::string text = accountText(fields, 3, rows);
    const std::string start = base64::encode(name) + "[-]LgnPss|cHc=||SelProfiles|[3]";
    check(text.starts_with(start));
    check(accountText(fields, 3, {}) == start);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkAccounts(input);
    const Checklist rows = readableRows(input);
    checkToggling(rows, size == 0 ? 0 : data[size - 1] % (rows.size() + 1));
    checkText(rows, input.substr(0, 16));
    return 0;
}
