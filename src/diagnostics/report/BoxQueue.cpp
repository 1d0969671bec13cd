#include "diagnostics/report/BoxQueue.h"

#include "diagnostics/report/TrappedError.h"

#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void BoxQueue::show(const QString& title, const QString& text)
{
    add({.title = title, .text = text.isNull() ? u""_s : text, .open = [this, title, text](int times) {
             m_boxes.show(title, times == 1 ? text : text + u"\r\n\r\n%1 times"_s.arg(times));
         }});
}

/// Counts a box while it is open; who owns the boxes may go meanwhile.
class BoxQueue::Opening
{
public:
    explicit Opening(BoxQueue& queue) : m_queue(&queue) { ++m_queue->m_open; }
    ~Opening()
    {
        if (m_queue && --m_queue->m_open == 0 && m_queue->isAnyWaiting())
            m_queue->showLater(); // who opened this one goes on first
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

private:
    const QPointer<BoxQueue> m_queue;
};

bool BoxQueue::confirm(const QString& title, const QString& question)
{
    const Opening opening(*this);
    return m_boxes.confirm(title, question);
}

void BoxQueue::showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error)
{
    const std::shared_ptr<void> end(nullptr, [error](void*) { error->close(); }); // shown, left out or forgotten
    add({.title = title, .text = {}, .open = [this, title, error, end](int) { m_boxes.showTrapped(title, error); }});
}

void BoxQueue::silence()
{
    m_isSilent = true;
    m_waiting.clear();
    m_leftOut = 0;
}

/// Counts the message in an equal one that waits. @return whether there is one
bool BoxQueue::isCounted(const Waiting& box)
{
    const auto equal = std::find_if(m_waiting.begin(), m_waiting.end(), [&box](const Waiting& other) {
        return !box.text.isNull() && !other.text.isNull() && other.title == box.title && other.text == box.text;
    });
    if (equal == m_waiting.end())
        return false;
    ++equal->times;
    return true;
}

void BoxQueue::add(Waiting box)
{
    if (m_isSilent || isCounted(box))
        return;
    if (m_waiting.size() < m_bounds.waitingBoxes)
        m_waiting.push_back(std::move(box));
    else
        ++m_leftOut;
    if (m_holds > 0)
        showLater();
    else
        showWaiting();
}

void BoxQueue::showLater()
{
    if (!std::exchange(m_isScheduled, true))
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isScheduled = false;
                showWaiting();
            },
            Qt::QueuedConnection);
}

void BoxQueue::showWaiting()
{
    const QPointer<BoxQueue> self(this);
    while (self && m_open == 0) {
        const std::function<void()> open = takeNext();
        if (!open)
            return;
        const Opening opening(*this);
        open();
    }
}

std::function<void()> BoxQueue::takeNext()
{
    if (!m_waiting.empty()) {
        Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        return [open = std::move(next.open), times = next.times] { open(times); };
    }
    if (const std::size_t leftOut = std::exchange(m_leftOut, 0); leftOut > 0)
        return [this, leftOut] {
            m_boxes.show(u"QRVRC"_s,
                         leftOut == 1
                             ? u"1 further message was left out. Errors are in the error log."_s
                             : u"%1 further messages were left out. Errors are in the error log."_s.arg(leftOut));
        };
    return {};
}
