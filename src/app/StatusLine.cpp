#include "app/StatusLine.h"

#include "app/ClientCore.h"
#include "app/StatusLabel.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "ui/ElidedLabel.h"

#include <QApplication>
#include <QEvent>
#include <QPushButton>
#include <QStatusBar>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Shares of the line while there is something to tell.
constexpr int linkShare = 2;
constexpr int messageShare = 3;

constexpr auto messageTime = 10s;

} // namespace

StatusLine::StatusLine(QStatusBar& statusBar, ClientCore& core, QObject* parent)
    : QObject(parent),
      m_bar(statusBar),
      m_core(core),
      lblConnection(new StatusLabel(u"lblConnection"_s, &statusBar)),
      lblNote(new ElidedLabel(u"lblNote"_s, &statusBar))
{
    statusBar.addWidget(lblConnection, linkShare);
    statusBar.addWidget(lblNote, messageShare);
    lblNote->hide();
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &StatusLine::showNow);
    m_second.setObjectName(u"tmrStatusLine"_s);
    m_second.setInterval(1s);
    connect(&m_second, &QTimer::timeout, this, &StatusLine::showNow);
    m_messageEnd.setObjectName(u"tmrMessage"_s);
    m_messageEnd.setSingleShot(true);
    connect(&m_messageEnd, &QTimer::timeout, this, [this] {
        m_message.clear();
        showMessage();
    });
    wireLink();
    m_announced = steadyLinkText(linkFacts()); // a start changes nothing
    showNow();
    m_bar.window()->installEventFilter(this);
}

void StatusLine::wireLink()
{
    connect(&m_core.keeper, &LinkKeeper::changed, this, &StatusLine::showSoon);
    connect(&m_core.link, &clsWinSock::phaseChanged, this, [this](LinkPhase phase) {
        if (phase == LinkPhase::Down)
            m_lastAnswer.reset();
        showSoon();
    });
    connect(&m_core.link, &clsWinSock::answered, this, [this] {
        m_lastAnswer = QTime::currentTime();
        showSoon();
    });
    connect(&m_core.status, &StatusSlot::told, this, &StatusLine::tell);
    connect(this, &StatusLine::stateTold, lblConnection, &StatusLabel::announce);
}

void StatusLine::tell(const QString& text)
{
    m_message = text;
    m_messageEnd.start(messageTime);
    showMessage();
}

void StatusLine::note(const QString& text)
{
    m_note = text;
    showMessage();
}

void StatusLine::withdraw(const QString& text)
{
    if (m_note == text)
        note({});
}

void StatusLine::showMessage()
{
    const QString& text = m_message.isEmpty() ? m_note : m_message;
    lblNote->setText(text); // screen readers hear of it
    lblNote->setToolTip(text.toHtmlEscaped());
    lblNote->setVisible(!text.isEmpty());
}

void StatusLine::followList(const ListNews& news)
{
    m_news = news;
    m_listAge.start();
    showSoon();
}

/// Behind what is going on, of which only the end counts.
void StatusLine::showSoon()
{
    m_soon.start(0);
}

void StatusLine::showNow()
{
    const LinkFacts link = linkFacts();
    QStringList texts{linkText(link)};
    if (link.phase == LinkPhase::LoggedIn)
        texts += listTexts(listFacts());
    lblConnection->show(markOf(link), texts);
    const QString steady = steadyLinkText(link);
    if (std::exchange(m_announced, steady) != steady)
        Q_EMIT stateTold(steady);
    showTries();
    followFrame();
}

void StatusLine::showTries()
{
    const bool isShown = m_core.keeper.isUnderWay();
    if (!cmdTryNow && !isShown)
        return;
    const auto button = [this](const QString& name, const QString& caption, const QString& tip) {
        auto* made = new QPushButton(caption, &m_bar);
        made->setObjectName(name);
        made->setToolTip(tip);
        // The frame's parts keep their places, so there is no room for a frame around the words.
        made->setMaximumHeight(m_bar.fontMetrics().height());
        made->setFlat(true);
        QPalette colours = made->palette();
        colours.setColor(QPalette::ButtonText, colours.color(QPalette::Link));
        colours.setColor(QPalette::Disabled, QPalette::ButtonText,
                         colours.color(QPalette::Disabled, QPalette::WindowText));
        made->setPalette(colours);
        m_bar.addWidget(made);
        return made;
    };
    if (!cmdTryNow) {
        cmdTryNow = button(u"cmdTryNow"_s, u"&Try now"_s, u"Connects again at once"_s);
        cmdStopTrying = button(u"cmdStopTrying"_s, u"Sto&p"_s, u"Does not connect again by itself"_s);
        connect(cmdTryNow, &QPushButton::clicked, &m_core.keeper, &LinkKeeper::tryNow);
        connect(cmdStopTrying, &QPushButton::clicked, &m_core.keeper, &LinkKeeper::stop);
    }
    cmdTryNow->setEnabled(m_core.keeper.plan.state() == ReconnectPlan::State::Waiting);
    cmdTryNow->setVisible(isShown);
    cmdStopTrying->setVisible(isShown);
}

bool StatusLine::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        showSoon();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool StatusLine::isFrameSeen() const
{
    const QWidget* frame = m_bar.window();
    return frame->isVisible() && !frame->isMinimized();
}

/// Only what grows older by the second needs to be looked at by the second.
void StatusLine::followFrame()
{
    const bool counts = isFrameSeen() && ((m_core.link.isLoggedIn() && m_news.isKnown) ||
                                          m_core.keeper.plan.state() == ReconnectPlan::State::Waiting);
    if (!counts)
        m_second.stop();
    else if (!m_second.isActive())
        m_second.start();
}

LinkFacts StatusLine::linkFacts() const
{
    const LinkKeeper& keeper = m_core.keeper;
    const Connection& connection = m_core.link.connection();
    LinkFacts facts{.phase = m_core.link.phase(),
                    .host = connection.host,
                    .user = m_core.codePage.toText(connection.user),
                    .why = keeper.whyDown(),
                    .attempt = keeper.isUnderWay() ? keeper.plan.attempt() : 0,
                    .nextTry = {}};
    if (keeper.plan.state() == ReconnectPlan::State::Waiting)
        facts.nextTry = keeper.remaining();
    return facts;
}

ListFacts StatusLine::listFacts() const
{
    return {.news = m_news,
            .age = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::milliseconds(m_listAge.elapsed())),
            .pause = m_core.preferences.listRefresh,
            .rest = listRest(),
            .lastAnswer = m_lastAnswer};
}

ListRest StatusLine::listRest() const
{
    const auto* list = m_core.windows.existing<qrvrcProfilesList>();
    if (m_core.preferences.listRefresh == 0s)
        return ListRest::Off;
    if (!list || !list->isVisible())
        return ListRest::Elsewhere;
    if (m_bar.window()->isMinimized())
        return ListRest::Minimised;
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget())
        return ListRest::Held;
    return m_core.link.pending() ? ListRest::Waiting : ListRest::None;
}
