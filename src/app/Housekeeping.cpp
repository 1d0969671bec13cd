#include "app/Housekeeping.h"

#include "platform/system/ProcessMemory.h"

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

void show(QLabel& label, const QString& text, const QColor& colour, bool bold)
{
    label.setText(text);
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, colour);
    label.setPalette(palette);
    QFont font = label.font();
    font.setBold(bold);
    label.setFont(font);
}

} // namespace

Housekeeping::Housekeeping(QStatusBar& statusBar, const bool& updatesAvailable, QObject* parent)
    : QObject(parent),
      m_updatesAvailable(updatesAvailable),
      lblStatus(new QLabel(&statusBar))
{
    lblStatus->setObjectName(u"lblStatus"_s);
    statusBar.addPermanentWidget(lblStatus);
    auto* tmrGarbageCollection = new QTimer(this);
    tmrGarbageCollection->setObjectName(u"tmrGarbageCollection"_s);
    connect(tmrGarbageCollection, &QTimer::timeout, this, &Housekeeping::tick);
    tmrGarbageCollection->start(1000ms);
}

void Housekeeping::tick()
{
    const bool wasRed = lblStatus->palette().color(QPalette::WindowText) == Qt::red;
    if (m_updatesAvailable)
        show(*lblStatus, u"Updates Available"_s, wasRed ? Qt::black : Qt::red, !wasRed);
    else if (!lblStatus->text().isEmpty())
        show(*lblStatus, {}, Qt::black, false);
    trimProcessMemory();
}
