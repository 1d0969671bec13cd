#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class qrvrcMenu;
class WorkingWindow;
struct ClientCore;

/// Leads the user back to where he was when a connection that was lost is back by itself: the window that was in front
/// is kept as it is, with what was typed into it, and the profile that was selected is selected again. Where he has
/// gone meanwhile, there he stays.
class Homecoming : public QObject
{
public:
    struct Hooks
    {
        std::function<WorkingWindow*()> front; ///< the window in front; may be null
        std::function<void(WorkingWindow&)> leave;
        std::function<void(const QString& name)> show;
    };

    /// Core and navigation outlive this. To be made before the windows, so that it hears of a loss before they do.
    Homecoming(ClientCore& core, qrvrcMenu& menu, Hooks hooks);

    /// To be asked when a window has taken another one's place.
    /// @return whether the one that was left is kept for the return, untold
    bool keeps(const WorkingWindow& left);
    /// To be called when somebody has logged in and may work: shows the profile list, or leads back. Waits.
    void arrive();

private:
    void followLoss();
    void forgetPlace(const WorkingWindow* left = nullptr);
    void goBackTo(WorkingWindow& window);

    ClientCore& m_core;
    qrvrcMenu& m_menu;
    Hooks m_hooks;
    QPointer<WorkingWindow> m_place; ///< in front when the link was lost, for as long as he may come back there
    bool m_isLeaving = false;        ///< the loss is about to take it from the front
};
