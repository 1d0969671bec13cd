#pragma once

#include "ui/WorkingWindow.h"

class QComboBox;
class QGroupBox;
class QPlainTextEdit;
class UpdateAgent;
class UpdatePanel;
struct Client;
struct UpdateServices;

/// Where the client's own files are kept current, and where the maker's news stand.
class qrvrcUpdate : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window.
    qrvrcUpdate(Client& client, const UpdateServices& services, UpdateAgent& agent, QWidget* parent);

    /// Whether there is something to download. Events run meanwhile, for a few seconds at most.
    bool QRVUpdateAvailable();

    QString helpSection() const override { return QStringLiteral("Update"); }
    void Form_Activate() override;

private:
    void buildControls();
    void layOut(UpdatePanel* panel);
    void wireSignals();
    void showNews();

    Client& m_client;
    UpdateAgent& m_agent;
    QGroupBox* fmeNews = nullptr;
    QPlainTextEdit* txtScripts = nullptr;
    QComboBox* cboFreq = nullptr;
};
