#include "app/qrvrcProgress.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QLabel* addCount(QFormLayout& layout, const QString& caption, const QString& name, const QString& unit)
{
    auto* value = new QLabel;
    value->setObjectName(name);
    value->setAlignment(Qt::AlignRight);
    value->setMinimumWidth(80);
    auto* row = new QHBoxLayout;
    row->addWidget(value);
    row->addWidget(new QLabel(unit));
    row->addStretch();
    layout.addRow(caption, row);
    return value;
}

} // namespace

qrvrcProgress::qrvrcProgress(QWidget* parent) : QDialog(parent)
{
    setObjectName(u"qrvrcProgress"_s);
    setWindowTitle(u"Recieving Data....."_s);
    setWindowModality(Qt::ApplicationModal);
    setCursor(Qt::WaitCursor);
    tmrProgress = new QTimer(this);
    tmrProgress->setObjectName(u"tmrProgress"_s);
    tmrProgress->setInterval(100ms);
    connect(tmrProgress, &QTimer::timeout, this, &qrvrcProgress::tick);
}

void qrvrcProgress::buildControls()
{
    auto* info = new QGroupBox(u"Info"_s);
    auto* counts = new QFormLayout(info);
    lblExpected = addCount(*counts, u"Bytes Expected:"_s, u"lblExpected"_s, u"bytes"_s);
    lblRecieved = addCount(*counts, u"Bytes Recieved:"_s, u"lblRecieved"_s, u"bytes"_s);
    lblPercent = addCount(*counts, u"Complete:"_s, u"lblPercent"_s, {});
    auto* progress = new QGroupBox(u"Progress"_s);
    auto* bar = new QVBoxLayout(progress);
    pbData = new QProgressBar;
    pbData->setObjectName(u"pbData"_s);
    pbData->setTextVisible(false);
    bar->addWidget(pbData);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addWidget(progress);
    setFixedSize(300, sizeHint().height());
}

void qrvrcProgress::DoProgress(qint32 total, qint32 received, bool update)
{
    if (!update) {
        if (!pbData)
            buildControls(); // most runs never see a large reply
        pbData->setRange(0, std::max(total, 1));
        pbData->setValue(0);
        lblExpected->setText(QString::number(total));
        lblRecieved->setText(u"0"_s);
        lblPercent->setText(u"0 %"_s);
        tmrProgress->start();
        return;
    }
    if (!tmrProgress->isActive())
        return; // never opened for this reply
    pbData->setValue(std::min(received, pbData->maximum()));
    lblRecieved->setText(QString::number(pbData->value()));
}

void qrvrcProgress::tick()
{
    lblPercent->setText(QString::number(qint64{100} * pbData->value() / pbData->maximum()) + u'%');
    if (pbData->value() == pbData->maximum())
        finish();
    else if (!isVisible())
        show();
}

void qrvrcProgress::finish()
{
    tmrProgress->stop();
    hide();
}

void qrvrcProgress::reject()
{
    Q_EMIT stopRequested();
}
