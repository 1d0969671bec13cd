#pragma once

#include "client/SelectedProfile.h"
#include "link/Connection.h"
#include "profiles/editor/ProfileForm.h"
#include "profiles/editor/ScriptCheck.h"
#include "ui/BusyPointer.h"
#include "ui/WorkingWindow.h"

#include <optional>
#include <string_view>

class ImageButton;
enum class WaitEnd;
struct Client;

/// "Modify Profile": the settings of one profile of the tracker. Reads the profile when it is opened, checks script
/// addresses over HTTP before they join the list, and writes the settings back. What it shows belongs to that profile
/// and that host, whatever is selected or connected later.
class qrvrcModify : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window. @param navigation  locked with the window while a request is under way
    qrvrcModify(Client& client, QWidget* navigation, QWidget* parent);

    /// 1 shows the Modify button. Written by whoever opens the window, before it is shown.
    int EditMode = 0;

    /// Empties the name, the script entries and the entry being typed, and sets the host's name and the left leaning
    /// players back; the rest of the form keeps what it shows.
    void clearForm();

    /// Takes up `profile` of the connected host and reads it anew, once events run. What was changed and not saved is
    /// discarded only with the user's consent, for which this waits; without it the window keeps what it has.
    /// @return whether the window is to be shown: what belongs to another host is not
    bool open(const ChosenProfile& profile);

    QString helpSection() const override { return QStringLiteral("Modify Profile"); }
    void Form_Activate() override;
    Leaving Form_Deactivate() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void layOut();
    void wireSignals();

    void readProfile();
    bool mayDiscard();
    bool isAtItsHost() const;
    void takeReply(std::string_view body);
    void addScript();
    void save();
    void send(const ProfileSettings& settings);
    WaitEnd exchange(const Request& request, const QString& doing);

    void complain(const FieldFault& fault);
    void setWaiting(ServerForm::Waiting waiting);
    bool isBusy() const { return m_waiting != ServerForm::Waiting::Nothing; }
    void followState();

    /// How far the profile was read. Only a whole one can be saved.
    enum class Reading { None, Partial, Whole };

    Client& m_client;
    QWidget* m_navigation;
    ChosenProfile m_profile; ///< whose settings these are
    Connection m_host;       ///< where the profile is
    Reading m_reading = Reading::None;
    bool m_isRefused = false; ///< by the answer to the last "SetProfile"
    ServerForm::Waiting m_waiting = ServerForm::Waiting::Nothing;
    std::optional<BusyPointer> m_pointer; ///< while something is waited for
    ScriptCheck m_check;

    ProfileForm* m_form = nullptr;
    ImageButton* cmdModify = nullptr;
    ImageButton* cmdCancel = nullptr;
};
