#pragma once

#include "practice/SupportSide.h"
#include "tour/Act.h"

namespace tour {

/// The way of an administrator who talks to the host's operator: he asks, reads, filters and searches what was said,
/// until the operator's link goes.
class SupportTour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param pictures  folder that exists
    SupportTour(qrvrcMain& frame, const QDir& pictures);

private:
    void openTooEarly();
    void signIn();
    void talk();
    void ask(const QByteArray& question, int entriesAfterwards);
    void filter();
    void search();
    void loseLink();

    practice::SupportSide m_operator;
};

} // namespace tour
