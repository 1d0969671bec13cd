#pragma once

#include "diagnostics/report/MessageBoxes.h"

#include <QPointer>
#include <QWidget>

/// The program's message boxes as modal windows named "msgBox". They stand over the active window, or over the main
/// window when none is active, and can be used while that window is disabled.
class Dialogs : public MessageBoxes
{
public:
    /// @param mainWindow  may be null; may be destroyed before this
    explicit Dialogs(QWidget* mainWindow = nullptr);

    void show(const QString& title, const QString& text) override;
    bool confirm(const QString& title, const QString& question) override;
    void showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error) override;

private:
    QWidget* boxParent() const;

    QPointer<QWidget> m_mainWindow;
};
