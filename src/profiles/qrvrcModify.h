#pragma once

#include "profiles/ProfileSettings.h"
#include "ui/WorkingWindow.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class ImageButton;
class PageFetch;
class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
enum class MessageKind : quint8;
enum class WaitEnd;
struct Client;
struct SelectedProfile;

/// "Modify Profile": the settings of one profile of the tracker. Reads the selected profile when it is opened, checks
/// script addresses over HTTP before they join the list, and writes the settings back to the profile that was read.
class qrvrcModify : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window. @param navigation  locked with the window while a request is under way
    qrvrcModify(Client& client, const SelectedProfile& selected, QWidget* navigation, QWidget* parent);
    ~qrvrcModify() override;

    /// 1 shows the Modify button. Written by whoever opens the window, before it is shown.
    int EditMode = 0;
    /// A script that has not answered by then is taken for none. A setting.
    std::chrono::milliseconds checkLimit = std::chrono::seconds(20);

    /// Empties the name, the script entries and the entry being typed, and sets the host's name and the left leaning
    /// players back; the rest of the form keeps what it shows.
    void clearForm();

    /// The window is opened: reads the selected profile anew. What was changed and not saved is discarded only with
    /// the user's consent.
    void Form_Activate() override;
    Leaving Form_Deactivate() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void buildServerFrame();
    void buildPaddingFrame();
    void buildMiscFrame();
    void placeControls();
    void placeServerFrame();
    void wireSignals();

    void readProfile();
    bool mayDiscard();
    void takeReply(std::string_view body);
    void tellUnread(WaitEnd end);

    void addUrl();
    void addScript();
    std::optional<bool> answersYes(const QString& doing, const std::string& address, const std::string& system);
    void stopCheck();
    void removeScript();

    void save();
    bool isAccepted(const ProfileSettings& now);
    void send(const ProfileSettings& settings);
    WaitEnd exchange(const Request& request, const QString& doing);

    void showSettings(const ProfileSettings& settings);
    ProfileSettings typed() const;
    void clearEntry();
    bool hasChanges() const;
    std::string bytesOf(const QLineEdit* field) const;
    bool isSendable(QLineEdit* field);
    void complain(MessageKind kind, const QString& text, QWidget* field);
    void setBusy(bool busy);
    void note(const QString& text, const QString& address = {});
    void followState();

    /// What has become of the request that was sent last.
    enum class Answer { None, Awaited, Broken, Taken, Refused };

    Client& m_client;
    const SelectedProfile& m_selected;
    QWidget* m_navigation;
    std::string m_id;                   ///< of the profile that was read, whatever the list selects later
    QString m_peer;                     ///< the host that it was read from
    ProfileSettings m_read;             ///< as the tracker sent them
    ProfileSettings m_shown;            ///< the same as the form shows them
    bool m_isRead = false;              ///< whole; otherwise they must not be saved
    bool m_isBusy = false;              ///< a request or a check is under way
    bool m_isStopped = false;           ///< the check was ended before its answer
    Answer m_answer = Answer::None;     ///< to "GetProfile" or "SetProfile"
    std::unique_ptr<PageFetch> m_fetch; ///< the check under way

    QGroupBox* fmeProfile = nullptr;
    QGroupBox* fmeServer = nullptr;
    QGroupBox* fmePadding = nullptr;
    QGroupBox* fmeMisc = nullptr;
    QLineEdit* txtName = nullptr;
    QComboBox* cboStats = nullptr;
    QListWidget* lstUrls = nullptr;
    QAction* mnuRemove = nullptr;
    QLineEdit* txtUrl = nullptr;
    QLineEdit* txtServerid = nullptr;
    ImageButton* cmdAddurl = nullptr;
    QLabel* lblCheck = nullptr; ///< what is going on, or what became of it
    QProgressBar* pbCheck = nullptr;
    ImageButton* cmdStopCheck = nullptr;
    QLineEdit* txtSrHost = nullptr;
    QCheckBox* chkAntiStatsPad = nullptr;
    QLineEdit* txtPadnum = nullptr;
    QLineEdit* txtPadtime = nullptr;
    QComboBox* cboLL = nullptr;
    QCheckBox* chkAra = nullptr;
    QCheckBox* chkRbm = nullptr;
    QCheckBox* chkAcs = nullptr;
    ImageButton* cmdModify = nullptr;
    ImageButton* cmdCancel = nullptr;
};
