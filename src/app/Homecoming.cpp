#include "app/Homecoming.h"

#include "app/ClientCore.h"
#include "navigation/qrvrcMenu.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "ui/WorkingWindow.h"

#include <utility>

Homecoming::Homecoming(ClientCore& core, qrvrcMenu& menu, Hooks hooks)
    : m_core(core),
      m_menu(menu),
      m_hooks(std::move(hooks))
{
    connect(&m_core.link, &clsWinSock::linkLost, this, &Homecoming::followLoss);
    connect(&m_core.keeper, &LinkKeeper::changed, this, [this] {
        if (!m_core.keeper.isUnderWay() && !m_core.link.isConnected())
            forgetPlace();
    });
}

void Homecoming::followLoss()
{
    if (m_place || m_core.keeper.plan.attempt() != 1)
        return; // a try that came to nothing
    m_place = m_hooks.front();
    m_isLeaving = true;
    QMetaObject::invokeMethod(
        this, [this] { m_isLeaving = false; }, Qt::QueuedConnection);
}

bool Homecoming::keeps(const WorkingWindow& left)
{
    if (std::exchange(m_isLeaving, false) && m_place == &left)
        return true;
    forgetPlace(&left); // the user goes somewhere himself
    return false;
}

/// @param left  a window that is told of it in any case
void Homecoming::forgetPlace(const WorkingWindow* left)
{
    WorkingWindow* const place = std::exchange(m_place, nullptr);
    if (place && place != left && place != m_hooks.front())
        m_hooks.leave(*place);
}

void Homecoming::arrive()
{
    const QPointer<WorkingWindow> target = m_place ? m_place.data() : m_hooks.front();
    if (m_core.link.openedBy() == PendingRequest::Asked::ByUser || !target) {
        forgetPlace();
        m_menu.showProfileList();
        return;
    }
    goBackTo(*target);
}

void Homecoming::goBackTo(WorkingWindow& window)
{
    auto* const list = m_core.windows.window<qrvrcProfilesList>();
    const QPointer<WorkingWindow> target(&window);
    list->chooseAsBeforeLoss();
    if (target == list) {
        m_place.clear();
        m_menu.showProfileList();
        return;
    }
    list->reloadBehindLoss(); // what the other windows are about is selected there
    if (!target || !m_core.link.isLoggedIn() || (m_place != target && m_hooks.front() != target))
        return; // lost again, or he has gone elsewhere meanwhile
    m_place.clear();
    if (!m_menu.pointAt(target->objectName())) {
        m_hooks.leave(*target);
        m_menu.showProfileList();
        return;
    }
    if (m_hooks.front() == target)
        return;
    QWidget* const focused = target->focusWidget();
    m_hooks.show(target->objectName());
    if (focused && target && target->isVisible())
        focused->setFocus();
}
