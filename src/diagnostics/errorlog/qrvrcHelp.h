#pragma once

#include "diagnostics/errorlog/ErrorLogSender.h"
#include "ui/WorkingWindow.h"

#include <filesystem>
#include <functional>

class ErrorLogPanel;
class ImageButton;
class QGroupBox;
struct Client;

/// What the help centre opens and does not know.
struct HelpHooks
{
    std::function<void(const std::filesystem::path& file)> showManual; ///< opens a help file at its beginning
    std::function<void()> openSupport;                                 ///< opens the support console
    ErrorReportPage page;
};

/// The help centre: the manual, the support console, the recovery console and the error log, from one window.
class qrvrcHelp : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    qrvrcHelp(Client& client, HelpHooks hooks, QWidget* parent);

    QString helpSection() const override { return QStringLiteral("Help"); }
    void Form_Activate() override;

private:
    QGroupBox* buildRows();
    void layOut();
    void wireSignals();
    void openRecovery();

    Client& m_client;
    HelpHooks m_hooks;
    ErrorLogPanel* fmeErrors = nullptr;
    ImageButton* cmdShowHelp = nullptr;
    ImageButton* cmdLoadSupport = nullptr;
    ImageButton* cmdRecovConsole = nullptr;
    ImageButton* cmdViewErrors = nullptr;
};
