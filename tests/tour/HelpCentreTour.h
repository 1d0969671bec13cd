#pragma once

#include "practice/RecoveryTool.h"
#include "practice/WebSide.h"
#include "tour/Act.h"

namespace tour {

/// The way of an administrator on a bad day: he reads the manual, looks at the errors that the program has noted, sends
/// them, and recovers a tracker that does not answer.
class HelpCentreTour : public Act
{
public:
    /// Puts an error log and a connection profile into the frame's folder.
    /// @param frame     not started yet; outlives the tour
    /// @param web       the frame's maker host
    /// @param pictures  folder that exists
    HelpCentreTour(qrvrcMain& frame, practice::WebSide& web, const QDir& pictures);

private:
    void layOut();
    void readManual();
    void readErrors();
    void sendErrors();
    void misuseRecovery();
    void recover();

    practice::WebSide& m_web;
    practice::RecoveryTool m_tool;
};

} // namespace tour
