#pragma once

#include "client/SelectedProfile.h"
#include "link/Connection.h"

/// Where accounts are at home: a profile of a tracker, as one of the tracker's users reaches it.
struct AccountHome
{
    Connection connection;
    ChosenProfile profile;

    /// Whether both hold the same accounts; what the profile is called and whether it hosts does not matter.
    bool isSame(const AccountHome& other) const
    {
        return profile.id == other.profile.id && connection.isSameAccount(other.connection);
    }
};
