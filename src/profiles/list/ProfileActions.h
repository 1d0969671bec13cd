#pragma once

#include "profiles/list/ActionRequests.h"
#include "profiles/list/ProfileRecord.h"

#include <QObject>
#include <QString>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QWidget;
class qrvrcProfilesList;
enum class WaitEnd;
struct ChosenProfile;
struct Client;

/// What the actions need of the rooms around the profile list.
struct ActionHooks
{
    QWidget* navigation = nullptr; ///< locked with the list while an action is under way
    /// Lets the game-start plugin start the profile's game; raises what the plugin raises.
    std::function<void(const ChosenProfile& profile)> startGame;
    /// Brings the window of that name to the front, for this profile.
    std::function<void(const QString& name, const ChosenProfile& profile)> showWindow;
};

/// What can be done with a profile of the list.
enum class ProfileAction {
    Attach,       ///< as the button does it
    AttachByMenu, ///< the same, with the pause and the refresh of the menu's entry
    Detach,
    StartGame,
    StopGame,
    Delete,
    Modify,
    ViewPlayers,
    ViewFiles,
};

/// The profile that the user aimed at, as it was when he did.
struct ProfileAim
{
    ProfileRecord profile;
    unsigned choice = 0; ///< number of his choices in the list by then
};

/// What the administrator does with profiles. One action at a time; those that are chosen meanwhile wait for their
/// turn, a few of them, each once, so nothing is done twice by a user who presses twice. Each is done for the profile
/// that it was aimed at, whatever is selected by then; when that is gone, the user is told and nothing is sent.
class ProfileActions : public QObject
{
    Q_OBJECT

public:
    /// Registers for "Attach". @param list  outlives this, as `client` does
    ProfileActions(Client& client, qrvrcProfilesList& list, ActionHooks hooks);

    /// Returns when the action is over, or at once when another one is under way.
    void run(ProfileAction action, const ProfileAim& aim);
    /// Whether a game is being started, by a plugin that has the keyboard.
    bool isStartingGame() const { return m_current && m_current->action == ProfileAction::StartGame; }

private:
    struct Order
    {
        ProfileAction action;
        ProfileAim aim;
    };

    void perform(const Order& order);
    void attachByButton(const ProfileAim& aim);
    void attachByMenu(const ProfileAim& aim);
    void detach(const ProfileAim& aim);
    void startGame(const ProfileAim& aim);
    void stopGame(const ProfileAim& aim);
    void deleteProfile(const ProfileAim& aim);
    void modify(const ProfileAim& aim);
    void viewPlayers(const ProfileAim& aim);
    void viewFiles(const ProfileAim& aim);

    bool isMeant(bool isAsked, const QString& question, const ProfileRecord& profile);
    void tellWhetherHosting(const ProfileRecord& profile, const QString& no, const QString& yes);
    void takeAttachReply(std::string_view body);
    bool attach(const ProfileRecord& profile);
    std::optional<ProcessRecord> chooseProcess(const ProfileRecord& profile);
    void letRawRequestsOut();
    WaitEnd send(const Request& request, const ProfileRecord& profile);
    void open(const QString& window, const ProfileAim& aim);

    Client& m_client;
    qrvrcProfilesList& m_list;
    ActionHooks m_hooks;
    std::optional<Order> m_current; ///< under way
    std::deque<Order> m_waiting;
    bool m_isGone = false; ///< the profile of the action under way is not in the list any more
    bool m_isOver = false; ///< the link on which it began is lost; another one may stand by now
    // The last reply to "Attach".
    bool m_isAttachOutcome = false;
    std::vector<ProcessRecord> m_processes;
};
