#include "admins/AdminRecords.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "link/PackedReply.h"

#include <map>
#include <new>
#include <utility>

namespace {

using Kind = ChecklistRow::Kind;

constexpr std::string_view separator = "[-]";
constexpr std::string_view partSeparator = "[-][-]";
constexpr std::string_view restriction = "Restrict";
constexpr std::size_t rowCells = 3; ///< the two that are shown, and what stands behind them; so for the next
constexpr std::size_t accountFields = 5;

/// The first pieces between separators that are not empty.
/// @return whether these are all
bool takePieces(std::string_view text, std::size_t most, std::vector<std::string_view>& found)
{
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        if (end != 0) {
            if (found.size() == most)
                return false;
            found.push_back(text.substr(0, end));
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + separator.size());
    }
    return true;
}

ChecklistRow sectionRow(std::string_view text)
{
    const FieldList cells(std::string(text), '\t', rowCells);
    const std::string heading(cells.at(0));
    return {Kind::Section, heading, cells.size() > 1 ? std::string(cells.at(1)) : heading};
}

ChecklistRow privilegeRow(std::string_view text)
{
    const bool granted = text.back() == '1';
    if (granted || text.back() == '0')
        text.remove_suffix(1);
    const FieldList cells(std::string(text), '\t', rowCells);
    return {Kind::Privilege, {}, std::string(cells.at(cells.size() > 1 ? 1 : 0)), granted};
}

bool isPrivilege(const ChecklistRow& row)
{
    return row.kind == Kind::Privilege;
}

bool isRestriction(const ChecklistRow& row)
{
    return isPrivilege(row) && row.name.find(restriction) != std::string::npos;
}

Request accountRequest(std::string name, std::string_view user, std::int32_t profileId, std::string_view text)
{
    std::string head = name + '_' + std::string(user);
    return {std::move(name), std::move(head), std::to_string(profileId) + '_' + base64::encode(text)};
}

} // namespace

AdminsText splitAdminsText(std::string_view text, std::size_t most)
{
    const std::size_t accountsEnd = text.find(partSeparator);
    AdminsText parts;
    parts.areAccountsCut = !takePieces(text.substr(0, accountsEnd), most, parts.accounts);
    if (accountsEnd != std::string_view::npos)
        parts.isLogCut = !takePieces(text.substr(accountsEnd + partSeparator.size()), most, parts.log);
    return parts;
}

AdminList readAdmins(const PackedReply& packed, const Bounds& bounds)
{
    AdminList list;
    try {
        const ListText text = expandList(packed, separator, bounds.listBytes);
        const AdminsText parts = splitAdminsText(text.text, bounds.listRows);
        // What is cut off a text has no log behind it, or is the end of the log.
        list.isLogCut = parts.isLogCut || text.isCut;
        list.areAccountsCut =
            parts.areAccountsCut || (text.isCut && text.text.find(partSeparator) == std::string::npos);
        list.log.assign(parts.log.begin(), parts.log.end());
        for (const std::string_view element : parts.accounts)
            list.accounts.push_back(decodeAdminAccount(element));
    } catch (const RuntimeError& error) {
        list.damage = error;
    } catch (const std::bad_alloc&) {
        list = {.damage = RuntimeError(ErrorNumber::OutOfMemory, "list of accounts")};
    }
    return list;
}

AdminAccount decodeAdminAccount(std::string_view element)
{
    const FieldList fields(std::string(element), '|', accountFields);
    return {
        .name = base64::decode(fields.at(0)),
        .password = base64::decode(fields.at(1)),
        .address = std::string(fields.at(2)),
        .status = std::string(fields.at(3)),
    };
}

std::vector<std::string_view> splitChecklist(std::string_view body, std::size_t most)
{
    std::vector<std::string_view> sections;
    if (!takePieces(body, most, sections))
        throw RuntimeError(ErrorNumber::Overflow, "more than " + std::to_string(most) + " sections of privileges");
    return sections;
}

Checklist decodeSection(std::string_view section, std::size_t most)
{
    const std::size_t headingEnd = section.find("||");
    if (headingEnd == std::string_view::npos)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "section of privileges");
    Checklist rows{sectionRow(section.substr(0, headingEnd))};
    for (const std::string_view privilege : splitBounded(section.substr(headingEnd + 2), '|', most, "privileges")) {
        if (!privilege.empty())
            rows.push_back(privilegeRow(privilege));
    }
    rows.emplace_back();
    return rows;
}

Checklist toggled(Checklist rows, std::size_t row)
{
    if (row >= rows.size() || !isPrivilege(rows[row]))
        return rows;
    rows[row].granted = !rows[row].granted;
    if (isRestriction(rows[row])) {
        for (std::size_t below = row + 1; below < rows.size() && isPrivilege(rows[below]); ++below)
            rows[below].granted = false;
        return rows;
    }
    for (std::size_t above = row; above > 0 && isPrivilege(rows[above - 1]); --above) {
        if (isRestriction(rows[above - 1])) {
            rows[above - 1].granted = false;
            break;
        }
    }
    return rows;
}

Checklist withEdits(Checklist fresh, const Checklist& received, const Checklist& edited)
{
    std::map<std::pair<std::string, std::string>, bool> changes; // by section and name
    std::string section;
    for (std::size_t row = 0; row < received.size() && row < edited.size(); ++row) {
        if (received[row].kind == Kind::Section)
            section = received[row].name;
        else if (received[row].granted != edited[row].granted)
            changes[{section, received[row].name}] = edited[row].granted;
    }
    for (ChecklistRow& row : fresh) {
        if (row.kind == Kind::Section)
            section = row.name;
        if (!isPrivilege(row))
            continue;
        if (const auto change = changes.find({section, row.name}); change != changes.end())
            row.granted = change->second;
    }
    return fresh;
}

std::optional<std::string_view> firstFault(const AccountFields& fields)
{
    if (trimmed(fields.name).empty())
        return "Username field is empty!";
    if (trimmed(fields.password).empty())
        return "Password field is empty!";
    // It would part the new name from the current one. Two names that are the same can still be told apart.
    if (fields.currentName && fields.name != *fields.currentName && fields.name.find('|') != std::string::npos)
        return "The new Username cannot hold the character '|'!";
    if (fields.name == newAdmin)
        return "Please choose another Username!";
    return {};
}

std::string accountText(const AccountFields& fields, std::int32_t profileId, const Checklist& rows)
{
    std::string text = base64::encode(fields.currentName ? fields.name + '|' + *fields.currentName : fields.name);
    text += "[-]LgnPss|" + base64::encode(fields.password);
    text += "||SelProfiles|[" + std::to_string(profileId) + ']';
    for (const ChecklistRow& row : rows) {
        if (isPrivilege(row))
            text += "||" + row.name + (row.granted ? "|1" : "|0");
        else if (!row.heading.empty())
            text += "||" + row.name + '|' + row.name;
    }
    return text;
}

Request getProfileAdminsRequest(std::string_view user, std::int32_t profileId)
{
    return {"GetProfileAdmins", "GetProfileAdmins_" + std::string(user), std::to_string(profileId)};
}

Request getProfileAdminPrivisRequest(std::string_view user, std::int32_t profileId, std::string_view account)
{
    return accountRequest("GetProfileAdminPrivis", user, profileId, account);
}

Request saveProfileAdminRequest(std::string_view user, std::int32_t profileId, const AccountFields& fields,
                                const Checklist& rows)
{
    return accountRequest(fields.currentName ? "ModifyProfileAdmin" : "AddProfileAdmin", user, profileId,
                          accountText(fields, profileId, rows));
}

Request deleteProfileAdminRequest(std::string_view user, std::int32_t profileId, std::string_view account)
{
    return accountRequest("DeleteProfileAdmin", user, profileId, account);
}

Request kickProfileAdminRequest(std::string_view user, std::int32_t profileId, std::string_view account)
{
    return accountRequest("KickProfileAdmin", user, profileId, account);
}
