#pragma once

#include "ui/BusyPointer.h"
#include "updates/UpdateServices.h"

#include <QGroupBox>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class ImageButton;
class ListCheck;
class QLabel;
class QProgressBar;
class UpdateAgent;
class UpdateChoice;
class UpdateQueue;
struct Client;

/// What one use of the panel has of its own.
struct UpdatePanelSetup
{
    QString frameName;
    QString title;
    QString checkName; ///< object name of the button that checks
    QString checkCaption;
    const CheckOrder& order;
    QString success;      ///< closing message when everything is in its place
    bool canUndo = false; ///< whether it offers to undo the last update
};

/// Checks for updates, shows what there is with a check box for each file, and downloads what is checked.
class UpdatePanel : public QGroupBox
{
    Q_OBJECT

public:
    /// All outlive the panel.
    UpdatePanel(Client& client, const UpdateServices& services, UpdateAgent& agent, UpdatePanelSetup setup,
                QWidget* parent);
    ~UpdatePanel() override;

Q_SIGNALS:
    /// These files have just been put where they belong, and the user has been told so.
    void placed(const std::vector<std::string>& names);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildControls();
    void layOut();
    void wireSignals();
    void setBusy(bool busy);
    void showButton(bool offersDownload);

    void check();
    void showCandidates();
    void tellRefused(const std::vector<RefusedFile>& refused);
    void showReason(const QString& why);
    void tellProof();

    void getUpdates();
    void leaveList(const QString& shown, const QString& told);
    void advance(qint64 bytes);
    void concludeDownload();
    void tellDownloaded(const QStringList& failed, bool areAnyDone, bool isCancelled);

    void followReplaced();
    void undo();

    Client& m_client;
    const UpdateServices& m_services;
    UpdateAgent& m_agent;
    UpdatePanelSetup m_setup;
    std::unique_ptr<ListCheck> m_check;
    std::unique_ptr<UpdateQueue> m_queue;
    std::optional<BusyPointer> m_pointer; ///< over the whole window, while either is at work
    qint64 m_total = 0;                   ///< bytes that are to come, as the list says
    qint64 m_done = 0;
    int m_fileCount = 0;    ///< of the download under way
    bool m_remains = false; ///< something that is offered was not wanted

    UpdateChoice* lstQRV = nullptr;
    ImageButton* cmdCheck = nullptr;
    ImageButton* cmdGetUpdates = nullptr;
    QGroupBox* fmeProgress = nullptr;
    ImageButton* cmdCancel = nullptr;
    QProgressBar* pbDwnld = nullptr;
    QLabel* lblPer = nullptr;
    QLabel* lblFetched = nullptr; ///< the file under way
    QLabel* lblReason = nullptr;  ///< of the selected row
    QLabel* lblProof = nullptr;   ///< says that nothing is proven
    ImageButton* cmdUndo = nullptr;
};
