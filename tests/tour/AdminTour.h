#pragma once

#include "tour/Act.h"

namespace tour {

/// The way of an administrator among the accounts of a profile: he looks at one, adds one, meets a damaged answer and
/// an empty list, and comes back as somebody who may do next to nothing.
class AdminTour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param pictures  folder that exists
    AdminTour(qrvrcMain& frame, const QDir& pictures);

private:
    void signIn();
    void lookAtOne();
    void addOne();
    void meetTrouble();
    void comeAsGuest();
    void reopen(const QString& what, const std::function<void()>& before, const std::function<bool()>& until);
};

} // namespace tour
