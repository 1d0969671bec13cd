#pragma once

#include "profiles/ActionRequests.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

class QWidget;
class qrvrcProfilesList;
enum class WaitEnd;
struct Client;

/// What the actions need of the rooms around the profile list.
struct ActionHooks
{
    QWidget* navigation = nullptr; ///< locked with the list while an action is under way
    /// Lets the game-start plugin start the profile's game; raises what the plugin raises.
    std::function<void(std::int32_t profileId)> startGame;
    /// Brings a window to the front by its name.
    std::function<void(const QString& name)> showWindow;
};

/// What the administrator does with the selected profile. One action at a time: what is chosen meanwhile is not done.
class ProfileActions : public QObject
{
    Q_OBJECT

public:
    /// Registers for "Attach". @param list  outlives this, as `client` does
    ProfileActions(Client& client, qrvrcProfilesList& list, ActionHooks hooks);

    /// Does what stands behind a control of the list; other names do nothing.
    void run(const QString& control);

private:
    void runAlone(void (ProfileActions::*action)());
    void attachByButton();
    void attachByMenu();
    void detach();
    void startGame();
    void stopGame();
    void deleteProfile();
    void modify();
    void viewPlayers();
    void viewFiles();

    void takeAttachReply(std::string_view body);
    bool attach();
    void chooseProcess(const std::string& profileId);
    void letRawRequestsOut();
    WaitEnd send(const Request& request);

    Client& m_client;
    qrvrcProfilesList& m_list;
    ActionHooks m_hooks;
    bool m_isBusy = false;
    /// What the last reply to "Attach" said.
    enum class AttachAnswer { None, Outcome, Processes } m_attachAnswer = AttachAnswer::None;
    std::vector<ProcessRecord> m_processes;
};
