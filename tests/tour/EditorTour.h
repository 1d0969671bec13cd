#pragma once

#include "practice/WebSide.h"
#include "tour/Act.h"

namespace tour {

/// The way of an administrator who edits a profile: he adds a script address, with mishaps, saves, and meets a profile
/// that cannot be read.
class EditorTour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param web       holds the statistics scripts
    /// @param pictures  folder that exists
    EditorTour(qrvrcMain& frame, const practice::WebSide& web, const QDir& pictures);

private:
    void signIn();
    void openEditor();
    void stopCheck();
    void missScripts();
    void addScript();
    void save();
    void meetGarbage();
    void enterScript(const QString& what, const QByteArray& folder, std::function<bool()> until);

    const practice::WebSide& m_web;
};

} // namespace tour
