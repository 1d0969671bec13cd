#include "practice/world/Privileges.h"

namespace practice {

const char* const restrictAccess = "Restrict Access";

const QList<PrivilegeSection>& standardSections()
{
    static const QList<PrivilegeSection> sections{
        {"Profiles",
         {"Edit Profiles", "Attach Profiles to Games", "Detach Profiles from Games", "Start Game from QRV",
          "Stop Game from QRV", "Change Profile Tracking Mode"}},
        {"Options", {restrictAccess, "View Options", "Change Options"}},
        {"Profile Admins",
         {restrictAccess, "View Connectivity Log", "Add New User", "Modify User", "Delete User", "Kick User",
          "View Users"}},
    };
    return sections;
}

PrivilegeSection pluginSection(const QByteArray& plugin)
{
    return {plugin, {restrictAccess, "Start Server", "Change Settings"}};
}

Privileges Privileges::everythingIn(const QList<PrivilegeSection>& sections)
{
    Privileges all;
    for (const PrivilegeSection& section : sections) {
        for (const QByteArray& privilege : section.privileges)
            all.grant(section.name, privilege, privilege != restrictAccess);
    }
    return all;
}

Privileges& Privileges::grant(const QByteArray& section, const QByteArray& privilege, bool granted)
{
    if (granted)
        m_granted[section].insert(privilege);
    else if (const auto found = m_granted.find(section); found != m_granted.end())
        found->remove(privilege);
    return *this;
}

bool Privileges::has(const QByteArray& section, const QByteArray& privilege) const
{
    return m_granted.value(section).contains(privilege);
}

bool Privileges::allows(const QByteArray& section, const QByteArray& privilege) const
{
    return has(section, privilege) && !has(section, restrictAccess);
}

QByteArray Privileges::text(const QList<PrivilegeSection>& sections) const
{
    QByteArray items = "User";
    for (const PrivilegeSection& section : sections) {
        items += '|' + section.name;
        for (const QByteArray& privilege : section.privileges)
            items += '|' + privilege + (has(section.name, privilege) ? "=1" : "=0");
    }
    return items;
}

} // namespace practice
