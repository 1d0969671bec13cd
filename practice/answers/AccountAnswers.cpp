#include "practice/answers/Answers.h"

namespace practice {

namespace {

constexpr char section[] = "Profile Admins";
const QByteArray newAccount = "Add New Admin";

/// The account text of an add or modify request.
struct AccountText
{
    QByteArray name;
    QByteArray currentName; ///< of the account to modify; empty when it is a new one
    QByteArray password;
    QList<int> profiles;
    Privileges privileges;
    bool valid = false;
};

QList<int> profileList(const QByteArray& text)
{
    QList<int> ids;
    if (text.startsWith('[') && text.endsWith(']')) {
        for (const QByteArray& id : text.mid(1, text.size() - 2).split(','))
            ids += id.toInt();
    }
    return ids;
}

/// Splits at every "||".
QList<QByteArray> splitAtBars(const QByteArray& text)
{
    QList<QByteArray> parts;
    qsizetype from = 0;
    for (qsizetype at = text.indexOf("||"); at >= 0; at = text.indexOf("||", from)) {
        parts += text.mid(from, at - from);
        from = at + 2;
    }
    parts += text.mid(from);
    return parts;
}

AccountText parseAccountText(const QByteArray& text)
{
    const QByteArray separator = "[-]LgnPss|";
    const qsizetype at = text.indexOf(separator);
    if (at < 0)
        return {};
    const QList<QByteArray> names = QByteArray::fromBase64(text.left(at)).split('|');
    const QList<QByteArray> groups = splitAtBars(text.mid(at + separator.size()));

    AccountText account;
    account.name = names.front();
    account.currentName = names.value(1);
    account.password = QByteArray::fromBase64(groups.front());
    QByteArray heading;
    for (const QByteArray& group : groups.mid(1)) {
        const qsizetype bar = group.indexOf('|');
        const QByteArray key = group.left(bar);
        const QByteArray value = bar < 0 ? QByteArray() : group.mid(bar + 1);
        if (key == "SelProfiles")
            account.profiles = profileList(value);
        else if (key == value)
            heading = key; // a section stands for itself
        else
            account.privileges.grant(heading, key, value == "1");
    }
    account.valid = !account.name.isEmpty() && !account.password.isEmpty();
    return account;
}

/// Nobody grants or takes away what he does not hold himself: such entries stay as they are in `before`.
Privileges grantable(const World& world, const Account& who, const Privileges& wanted, const Privileges& before)
{
    Privileges result;
    for (const PrivilegeSection& part : world.sections()) {
        for (const QByteArray& privilege : part.privileges) {
            const bool may = who.allows(part.name, privilege) || privilege == restrictAccess;
            result.grant(part.name, privilege, (may ? wanted : before).has(part.name, privilege));
        }
    }
    return result;
}

/// A request's profile id and the Base64 text behind it.
struct Target
{
    int profile = 0;
    QByteArray text;
};

Target targetOf(const Request& request)
{
    const qsizetype idEnd = request.tail.indexOf('_');
    if (idEnd < 0)
        return {};
    return {request.tail.left(idEnd).toInt(), QByteArray::fromBase64(request.tail.mid(idEnd + 1))};
}

/// The account that `who` may kick, delete or modify with `privilege`; null when there is none. Only a super account
/// touches another.
Account* reachable(World& world, const Account& who, int profile, const QByteArray& name, const char* privilege)
{
    Account* found = world.account(name);
    const bool may = who.administers(profile) && who.allows(section, privilege);
    if (!found || !may || !found->administers(profile) || (found->super && !who.super))
        return nullptr;
    return found;
}

} // namespace

Answer answerGetProfileAdmins(World& world, const Account& who, const Request& request)
{
    const int profile = request.tail.toInt();
    QList<QByteArray> accounts;
    if (who.administers(profile) && who.allows(section, "View Users")) {
        for (const Account& account : world.accounts) {
            if (!account.administers(profile))
                continue;
            const QList<QByteArray> fields{account.name.toBase64(), account.password.toBase64(), account.address,
                                           account.connections > 0 ? "Connected" : "Not connected"};
            accounts += fields.join('|');
        }
    }
    QList<QByteArray> log;
    if (who.administers(profile) && who.allows(section, "View Connectivity Log"))
        log = world.connectivityLog;
    return {envelope(accounts.join("[-]") + "[-][-]" + log.join("[-]"))};
}

Answer answerGetProfileAdminPrivis(World& world, const Account& who, const Request& request)
{
    const Target target = targetOf(request);
    const Account* account = world.account(target.text);
    if (!who.administers(target.profile) || (!account && target.text != newAccount))
        return {};
    Privileges shown;
    if (account)
        shown = account->super ? Privileges::everythingIn(world.sections()) : account->privileges;

    QList<QByteArray> sections;
    for (const PrivilegeSection& part : world.sections()) {
        QList<QByteArray> rows;
        for (const QByteArray& privilege : part.privileges)
            rows += '\t' + privilege + (shown.has(part.name, privilege) ? '1' : '0');
        sections += part.name + '\t' + part.name + "||" + rows.join('|');
    }
    return {sections.join("[-]")};
}

Answer answerAddProfileAdmin(World& world, const Account& who, const Request& request)
{
    const Target target = targetOf(request);
    const AccountText text = parseAccountText(target.text);
    const bool may = who.administers(target.profile) && who.allows(section, "Add New User");
    if (!may || !text.valid || text.name == newAccount || world.account(text.name))
        return {"False"};
    Account account;
    account.name = text.name;
    account.password = text.password;
    account.privileges = grantable(world, who, text.privileges, {});
    account.profiles = text.profiles.isEmpty() ? QList<int>{target.profile} : text.profiles;
    world.accounts += account;
    world.log(who.name + " added " + account.name);
    return {"True"};
}

Answer answerModifyProfileAdmin(World& world, const Account& who, const Request& request)
{
    const Target target = targetOf(request);
    const AccountText text = parseAccountText(target.text);
    Account* account = reachable(world, who, target.profile, text.currentName, "Modify User");
    const bool nameTaken = text.name != text.currentName && world.account(text.name);
    if (!account || !text.valid || nameTaken || text.name == newAccount)
        return {"False"};
    account->name = text.name;
    account->password = text.password;
    account->privileges = grantable(world, who, text.privileges, account->privileges);
    world.log(who.name + " modified " + account->name);
    return {.body = "True", .renamed = text.currentName, .newName = text.name};
}

Answer answerDeleteProfileAdmin(World& world, const Account& who, const Request& request)
{
    const Target target = targetOf(request);
    if (!reachable(world, who, target.profile, target.text, "Delete User"))
        return {"False"};
    world.accounts.removeIf([&](const Account& account) { return account.name == target.text; });
    world.log(who.name + " deleted " + target.text);
    return {.body = "True", .kicked = target.text};
}

Answer answerKickProfileAdmin(World& world, const Account& who, const Request& request)
{
    const Target target = targetOf(request);
    if (!reachable(world, who, target.profile, target.text, "Kick User"))
        return {"False"};
    world.log(who.name + " kicked " + target.text);
    return {.body = "True", .kicked = target.text};
}

} // namespace practice
