#pragma once

#include "profiles/list/ActionRequests.h"
#include "profiles/list/ProfileRecord.h"

#include <QDialog>

#include <optional>
#include <vector>

class ElidedLabel;
class ImageButton;
class QListWidget;
struct Client;

/// "Attach to Process": the processes of the host, one of which is chosen for a profile. Modal.
class qrvrcProcesses : public QDialog
{
    Q_OBJECT

public:
    /// @param client   outlives the window
    /// @param profile  the one that is to be attached; the window says so
    qrvrcProcesses(Client& client, const ProfileRecord& profile, const std::vector<ProcessRecord>& processes,
                   QWidget* parent);

    /// The process that was chosen with Attach; nothing when the window was closed otherwise.
    const std::optional<ProcessRecord>& chosen() const { return m_chosen; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void layOut();
    void wireSignals();
    void attach();

    Client& m_client;
    std::vector<ProcessRecord> m_processes;
    std::optional<ProcessRecord> m_chosen;
    ElidedLabel* lblProfile = nullptr;
    QListWidget* lstID = nullptr;
    QListWidget* lstProcess = nullptr;
    ImageButton* cmdAttach = nullptr;
    ImageButton* cmdCancel = nullptr;
};
