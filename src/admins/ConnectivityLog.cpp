#include "admins/ConnectivityLog.h"

#include "ui/CopyActions.h"
#include "ui/CutNote.h"

#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QMargins insets(7, 2, 7, 7); // pixels from the frame to the list
constexpr int logBatch = 1000;         // lines laid out at once
constexpr qreal linePoints = 8.25;     // as in the tables

} // namespace

ConnectivityLog::ConnectivityLog(QWidget* parent) : QGroupBox(u"Connectivity Log"_s, parent)
{
    setObjectName(u"fmeLog"_s);
    lstLog = new QListWidget(this);
    lstLog->setObjectName(u"lstLog"_s);
    lstLog->setAccessibleName(u"Connectivity Log"_s);
    QFont small = lstLog->font();
    small.setPointSizeF(linePoints);
    lstLog->setFont(small);
    lstLog->setWordWrap(true);
    lstLog->setAlternatingRowColors(true);
    lstLog->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstLog->setVerticalScrollMode(QListView::ScrollPerPixel);
    lstLog->setLayoutMode(QListView::Batched);
    lstLog->setBatchSize(logBatch);
    addCopyActions(lstLog);
    lblLogEmpty = new QLabel(lstLog->viewport());
    lblLogEmpty->setObjectName(u"lblLogEmpty"_s);
    lblLogEmpty->setAlignment(Qt::AlignCenter);
    lblLogEmpty->setWordWrap(true);
    lblLogEmpty->setForegroundRole(QPalette::PlaceholderText);
    auto* overLog = new QVBoxLayout(lstLog->viewport());
    overLog->addWidget(lblLogEmpty);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(insets);
    whole->addWidget(lstLog);
    lblLogCut = new CutNote(u"lblLogCut"_s, this);
    whole->addWidget(lblLogCut);
}

void ConnectivityLog::showLines(const QStringList& lines, const QString& emptyText, bool isCut)
{
    const QScrollBar& bar = *lstLog->verticalScrollBar();
    const bool followsEnd = bar.value() == bar.maximum();
    const int scrolled = bar.value();
    lstLog->clear();
    lstLog->addItems(lines);
    if (followsEnd)
        lstLog->scrollToBottom();
    else
        lstLog->verticalScrollBar()->setValue(scrolled);
    lblLogCut->tell(isCut, lines.size());
    lblLogEmpty->setText(emptyText);
    lblLogEmpty->setVisible(lines.isEmpty());
    lstLog->setAccessibleDescription(lines.isEmpty() ? emptyText : QString());
}
