#pragma once

#include "ui/WorkingWindow.h"

class QComboBox;
class QPlainTextEdit;
class UpdateAgent;
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

    void Form_Activate() override;

private:
    void buildNews(const QRect& place);
    void wireSignals();
    void showNews();

    Client& m_client;
    UpdateAgent& m_agent;
    QPlainTextEdit* txtScripts = nullptr;
    QComboBox* cboFreq = nullptr;
};
