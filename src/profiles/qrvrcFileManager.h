#pragma once

#include "link/ReplyAssembler.h"
#include "profiles/RemoteFiles.h"
#include "ui/WorkingWindow.h"

#include <memory>
#include <vector>

class GridView;
class ImageButton;
class QComboBox;
class QDateEdit;
class QLabel;
struct Client;

/// The remote file viewer: lists the files that the tracker keeps for a profile, of one kind and between two dates, and
/// fetches one into the text viewer. Goes when another working window takes its place.
class qrvrcFileManager : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client     outlives the window
    /// @param profileId  whose files; the window keeps to this profile
    qrvrcFileManager(Client& client, std::int32_t profileId, QWidget* parent);
    ~qrvrcFileManager() override;

    void Form_Activate() override;
    Leaving Form_Deactivate() override { return Leaving::Unloads; }

private:
    void buildControls();
    void placeControls();
    void wireSignals();
    void followFileType();
    void checkDates();
    void getFiles();
    void showList(std::string_view body);
    void showFiles(std::vector<RemoteFile> files);
    void viewFile();
    void takeFile(std::string_view body, const ReplyOwner& owner);
    const RemoteFileType& chosenType() const;

    Client& m_client;
    std::int32_t m_profileId;
    const RemoteFileType* m_listedType; ///< of the files in the grid
    std::shared_ptr<const std::vector<RemoteFile>> m_files;
    QString m_fetchedName; ///< of the file that was asked for last
    bool m_isAsking = false;
    bool m_isAnswered = false; ///< the reply that is waited for was one of this window

    QLabel* lblFileType = nullptr;
    QComboBox* cboFileType = nullptr;
    QLabel* lblFrom = nullptr;
    QDateEdit* dtpFrom = nullptr;
    QLabel* lblTo = nullptr;
    QDateEdit* dtpTo = nullptr;
    ImageButton* cmdGetFiles = nullptr;
    GridView* mfgFM = nullptr;
    QLabel* lblHint = nullptr;
    QLabel* lblState = nullptr;
};
