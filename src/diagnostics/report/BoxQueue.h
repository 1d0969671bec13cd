#pragma once

#include "base/Bounds.h"
#include "diagnostics/report/MessageBoxes.h"

#include <QObject>

#include <cstddef>
#include <deque>
#include <functional>

/// Shows boxes one at a time. A message that comes while another is open, or while boxes are held back, waits in a
/// short line, and the call returns at once; one that is equal to one in line is counted there, and of those for which
/// there is no room a sum is told at the end. A question is asked at once, because its answer is waited for.
class BoxQueue : public QObject, public MessageBoxes
{
public:
    /// @param boxes  what really opens; outlives this
    BoxQueue(MessageBoxes& boxes, const Bounds& bounds) : m_boxes(boxes), m_bounds(bounds) {}

    void show(const QString& title, const QString& text) override;
    bool confirm(const QString& title, const QString& question) override;
    void showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error) override;
    void hold() override { ++m_holds; }
    void release() override { --m_holds; }

    /// Forgets those that wait, and all that come. Called when the frame begins to unload.
    void silence();

private:
    class Opening;

    struct Waiting
    {
        QString title;
        QString text; ///< null for a trapped error, which counts itself
        std::function<void(int times)> open;
        int times = 1;
    };

    void add(Waiting box);
    bool isCounted(const Waiting& box);
    bool isAnyWaiting() const { return !m_waiting.empty() || m_leftOut > 0; }
    void showLater();
    void showWaiting();
    std::function<void()> takeNext();

    MessageBoxes& m_boxes;
    Bounds m_bounds;
    std::deque<Waiting> m_waiting;
    std::size_t m_leftOut = 0;
    int m_holds = 0;
    int m_open = 0; ///< boxes: a question may stand over a message
    bool m_isScheduled = false;
    bool m_isSilent = false;
};
