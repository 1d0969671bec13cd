#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>

namespace practice {

/// A part of the tracker and the privileges that it knows, in the order in which they are listed.
struct PrivilegeSection
{
    QByteArray name;
    QList<QByteArray> privileges;
};

/// The sections that every tracker has: "Profiles", "Options" and "Profile Admins", in this order.
const QList<PrivilegeSection>& standardSections();

/// The section of a plugin. Its first privilege is the restriction: a client counts the plugin as allowed when that
/// first entry is "0".
PrivilegeSection pluginSection(const QByteArray& plugin);

/// Takes a whole section away from an account, whatever else it was granted there.
extern const char* const restrictAccess;

/// What an account may do, by section and privilege name. Everything not granted is denied.
class Privileges
{
public:
    static Privileges everythingIn(const QList<PrivilegeSection>& sections);

    Privileges& grant(const QByteArray& section, const QByteArray& privilege, bool granted = true);
    /// Whether the entry itself is set.
    bool has(const QByteArray& section, const QByteArray& privilege) const;
    /// Whether the account may use the privilege: it is set and the section is not restricted.
    bool allows(const QByteArray& section, const QByteArray& privilege) const;

    /// The clear text that a login success carries in Base64: an unused first item, then for each section its name
    /// and one "privilege=0" or "privilege=1" an entry, all joined by "|".
    QByteArray text(const QList<PrivilegeSection>& sections) const;

    friend bool operator==(const Privileges&, const Privileges&) = default;

private:
    QMap<QByteArray, QSet<QByteArray>> m_granted;
};

} // namespace practice
