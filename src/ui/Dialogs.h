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
    /// A box that was closed before the outcome is known is left alone when it comes.
    void showTrapped(const QString& title, const QString& errorText, const ReportDelivery& deliver) override;

private:
    QWidget* boxParent() const;

    QPointer<QWidget> m_mainWindow;
};
