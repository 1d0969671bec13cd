#pragma once

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "link/Request.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One account that may log in to the tracker from afar.
struct AdminAccount
{
    std::string name;
    std::string password; ///< in clear, as the tracker keeps it
    std::string address;
    std::string status;

    bool operator==(const AdminAccount&) const = default;
};

/// The expanded text of a "GetProfileAdmins" reply in its parts, blank ones left out. Views into the text.
struct AdminsText
{
    std::vector<std::string_view> accounts; ///< for `decodeAdminAccount`
    std::vector<std::string_view> log;      ///< lines of the connectivity log
    bool areAccountsCut = false;            ///< there are more than were asked for; so for the next
    bool isLogCut = false;

    bool operator==(const AdminsText&) const = default;
};

/// @param most  of accounts, and of lines
AdminsText splitAdminsText(std::string_view text, std::size_t most);

/// @param element  Base64 name, Base64 password, address and status, joined by "|"
/// @throws RuntimeError SubscriptOutOfRange for fewer fields, TypeMismatch for what is no Base64
AdminAccount decodeAdminAccount(std::string_view element);

struct PackedReply;

/// What a "GetProfileAdmins" reply brought, as far as it could be read and is not cut.
struct AdminList
{
    std::vector<AdminAccount> accounts = {};
    std::vector<std::string> log = {};
    bool areAccountsCut = false;
    bool isLogCut = false;
    std::optional<RuntimeError> damage; ///< what ended the list
};

/// Never throws, so that it can run in another thread.
AdminList readAdmins(const PackedReply& packed, const Bounds& bounds);

/// One row of the privilege checklist.
struct ChecklistRow
{
    enum class Kind : std::uint8_t { Section, Privilege, Separator };

    Kind kind = Kind::Separator;
    std::string heading;  ///< what a section row has in its first column; empty in all others
    std::string name;     ///< the second column
    bool granted = false; ///< of privileges only

    bool operator==(const ChecklistRow&) const = default;
};
using Checklist = std::vector<ChecklistRow>;

/// The sections of a "GetProfileAdminPrivis" reply, for `decodeSection`. Blank ones are left out.
/// @throws RuntimeError Overflow for more than `most`
std::vector<std::string_view> splitChecklist(std::string_view body, std::size_t most);

/// The rows of one section: its own, its privileges, and a separator.
/// @param section  a row text, "||", and the row texts of the privileges joined by "|", each with "1" or "0" behind it.
///                 TABs part the cells of a row text; one without any is the name.
/// @param most     of the privileges
/// @throws RuntimeError SubscriptOutOfRange for a section without "||", Overflow for more privileges
Checklist decodeSection(std::string_view section, std::size_t most);

/// `rows` after a click on the privilege in `row`; as they are when that is no privilege. A privilege whose name
/// contains "Restrict" and those behind it in its section exclude each other.
Checklist toggled(Checklist rows, std::size_t row);

/// `fresh` with what the user has changed between `received` and `edited`: privileges are found again by section and
/// name.
Checklist withEdits(Checklist fresh, const Checklist& received, const Checklist& edited);

/// What an account is to become.
struct AccountFields
{
    std::string name;
    std::string password;
    std::optional<std::string> currentName; ///< of the account that is modified; none for a new one
};

/// What is wrong with the fields, in words for the user; nothing when they can be sent.
std::optional<std::string_view> firstFault(const AccountFields& fields);

/// The account as the tracker takes it, not yet in Base64.
std::string accountText(const AccountFields& fields, std::int32_t profileId, const Checklist& rows);

/// Stands for a new account wherever accounts are named.
inline constexpr std::string_view newAdmin = "Add New Admin";

Request getProfileAdminsRequest(std::string_view user, std::int32_t profileId);
/// @param account  or `newAdmin` for what a new account starts from
Request getProfileAdminPrivisRequest(std::string_view user, std::int32_t profileId, std::string_view account);
/// Adds the account, or modifies it when the fields name a current one.
Request saveProfileAdminRequest(std::string_view user, std::int32_t profileId, const AccountFields& fields,
                                const Checklist& rows);
Request deleteProfileAdminRequest(std::string_view user, std::int32_t profileId, std::string_view account);
Request kickProfileAdminRequest(std::string_view user, std::int32_t profileId, std::string_view account);
