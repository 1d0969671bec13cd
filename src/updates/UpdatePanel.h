#pragma once

#include "updates/UpdateServices.h"

#include <QGroupBox>
#include <QPixmap>

#include <memory>
#include <optional>
#include <vector>

class GridView;
class ImageButton;
class ListCheck;
class QLabel;
class QProgressBar;
class UpdateAgent;
class UpdateQueue;
struct Client;
struct GridRow;

/// What one use of the panel has of its own.
struct UpdatePanelSetup
{
    QString frameName;
    QString title;
    QString checkName; ///< object name of the button that checks
    QString checkCaption;
    const CheckOrder& order;
    QString success; ///< closing message when everything is in its place
};

/// Checks for updates, shows what there is with a check box for each file, and downloads what is checked.
class UpdatePanel : public QGroupBox
{
    Q_OBJECT

public:
    /// All outlive the panel.
    UpdatePanel(Client& client, const UpdateServices& services, UpdateAgent& agent, UpdatePanelSetup setup,
                const QRect& place, QWidget* parent);
    ~UpdatePanel() override;

private:
    void buildControls();
    void buildProgress(const QRect& place);
    void wireSignals();
    void setBusy(bool busy);
    void showButton(bool offersDownload);

    void check();
    void showCandidates();
    void addGroup(const QString& title, const std::vector<UpdateRecord>& records, bool checked);
    void showNothing();
    void tellRefused(const std::vector<UpdateRecord>& refused);
    void toggle(int row);

    void getUpdates();
    void advance(qint64 bytes);
    void concludeDownload();
    void clearGrid();

    Client& m_client;
    const UpdateServices& m_services;
    UpdateAgent& m_agent;
    UpdatePanelSetup m_setup;
    QPixmap m_checked;
    QPixmap m_unchecked;
    std::unique_ptr<ListCheck> m_check;
    std::unique_ptr<UpdateQueue> m_queue;
    std::vector<GridRow> m_rows;                        ///< while the grid is being filled
    std::vector<std::optional<UpdateRecord>> m_records; ///< row by row; none for a title
    qint64 m_total = 0;                                 ///< bytes that are to come, as the list says
    qint64 m_done = 0;

    GridView* lstQRV = nullptr;
    ImageButton* cmdCheck = nullptr;
    ImageButton* cmdGetUpdates = nullptr;
    ImageButton* cmdCancel = nullptr;
    QProgressBar* pbDwnld = nullptr;
    QLabel* lblPer = nullptr;
};
