#include "ui/FirstPaint.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

namespace {

class FirstPaint : public QObject
{
public:
    FirstPaint(QWidget& widget, std::function<void()> work) : QObject(&widget), m_work(std::move(work))
    {
        widget.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, this, [this] {
                deleteLater();
                m_work();
            });
        }
        return false;
    }

private:
    std::function<void()> m_work;
};

} // namespace

void afterFirstPaint(QWidget& widget, std::function<void()> work)
{
    new FirstPaint(widget, std::move(work)); // owned by the widget
}
