#pragma once

#include "client/SelectedProfile.h"
#include "link/ReplyAssembler.h"
#include "platform/system/Background.h"
#include "profiles/files/RemoteFiles.h"
#include "ui/WorkingWindow.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class CutNote;
class ElidedLabel;
class GridView;
class ImageButton;
class QComboBox;
class QDateEdit;
class QLabel;
struct Client;

/// The remote file viewer: lists the files that the tracker keeps for a profile, of one kind and between two dates, and
/// fetches one into the text viewer. Goes when another working window takes its place, and so with the connection.
class qrvrcFileManager : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client   outlives the window
    /// @param profile  whose files; the window keeps to this profile
    qrvrcFileManager(Client& client, ChosenProfile profile, QWidget* parent);
    ~qrvrcFileManager() override;

    QString helpSection() const override { return QStringLiteral("Remote File Viewer"); }
    void Form_Activate() override;
    Leaving Form_Deactivate() override { return Leaving::Unloads; }

private:
    void buildControls();
    void layOut();
    void wireSignals();
    void followFileType();
    void chooseFiles();
    void getFiles();
    void forgetWish();
    void takeList(std::string_view body, const ReplyOwner& owner);
    void showList(RemoteFileList list, const RemoteFileType& type);
    void showFiles(std::vector<RemoteFile> files, const RemoteFileType& type);
    void openRow(int row);
    void viewFile(const QString& name, const std::string& path);
    void takeFile(std::string_view body, const ReplyOwner& owner);
    bool exchange(const Request& request, const QString& doing);
    const RemoteFileType& chosenType() const;

    Client& m_client;
    const ChosenProfile m_profile;
    const RemoteFileType* m_listedType; ///< of the files in the grid
    std::shared_ptr<const std::vector<RemoteFile>> m_files;
    std::optional<FileChoice> m_wanted; ///< by the newest Get Files; nothing when it is there, or changed since
    FileChoice m_asked;                 ///< by the request for a list that was sent last
    QString m_fetchedName;              ///< of the file that was asked for last
    bool m_isAsking = false;
    NewestWork<RemoteFileList> m_reading;

    QLabel* lblFileType = nullptr;
    QComboBox* cboFileType = nullptr;
    QLabel* lblFrom = nullptr;
    QDateEdit* dtpFrom = nullptr;
    QLabel* lblTo = nullptr;
    QDateEdit* dtpTo = nullptr;
    ElidedLabel* lblTitle = nullptr; ///< whose files
    ImageButton* cmdGetFiles = nullptr;
    GridView* mfgFM = nullptr;
    CutNote* lblCut = nullptr;
    QLabel* lblHint = nullptr;
    QLabel* lblState = nullptr;
};
