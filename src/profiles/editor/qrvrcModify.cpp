#include "profiles/editor/qrvrcModify.h"

#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"
#include "ui/WindowLock.h"
#include "ui/WindowRegistry.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int gap = 8;
constexpr int buttonWidth = 130;

constexpr std::chrono::seconds checkLimit{20}; // a script that has not answered by then is taken for none

} // namespace

qrvrcModify::qrvrcModify(Client& client, QWidget* navigation, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_navigation(navigation),
      m_check(client.inet, client.boxes, client.codePage, checkLimit)
{
    setObjectName(u"qrvrcModify"_s);
    setWindowTitle(u"Modify Profile"_s);
    buildControls();
    layOut();
    wireSignals();
    followState();
}

void qrvrcModify::buildControls()
{
    m_form = new ProfileForm(m_client.codePage, m_client.pictures, this);
    cmdModify = new ImageButton(u"cmdModify"_s, u"Modify"_s, m_client.pictures, this);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, this);
}

void qrvrcModify::layOut()
{
    // At the right: away from the place of the list's button that opens this window, where a double click would press
    // them.
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(gap);
    buttons->addStretch();
    for (ImageButton* button : {cmdModify, cmdCancel}) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face());
    }
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(pageMargins);
    page->setSpacing(gap);
    page->addWidget(m_form, 1);
    page->addLayout(buttons);
}

void qrvrcModify::wireSignals()
{
    using Waiting = ServerForm::Waiting;
    ServerForm* server = &m_form->server();
    connect(server, &ServerForm::addWanted, this,
            m_client.reporter.trapped("frmModify_AddUrl", [this] { addScript(); }));
    connect(server, &ServerForm::stopWanted, &m_check, &ScriptCheck::stop);
    connect(&m_check, &ScriptCheck::told, server, &ServerForm::note);
    connect(&m_check, &ScriptCheck::fetchingChanged, this,
            [this] { setWaiting(m_check.isFetching() ? Waiting::Scripts : Waiting::Nothing); });
    connect(cmdModify, &ImageButton::clicked, this, &qrvrcModify::save);
    connect(cmdCancel, &ImageButton::clicked, this, &qrvrcModify::closeWanted);
    m_client.replies.on("GetProfile", this, [this](std::string_view body) { takeReply(body); });
    m_client.replies.on("SetProfile", this, [this](std::string_view body) { m_isRefused = trimmed(body) == "False"; });
}

void qrvrcModify::Form_Activate()
{
    m_form->takeKeyboard();
    followState();
}

WorkingWindow::Leaving qrvrcModify::Form_Deactivate()
{
    m_check.stop();
    return Leaving::Keeps;
}

void qrvrcModify::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_check.isFetching())
        m_check.stop();
    else
        WorkingWindow::keyPressEvent(event);
}

void qrvrcModify::clearForm()
{
    m_form->clear();
}

bool qrvrcModify::open(const ChosenProfile& profile)
{
    const QPointer<qrvrcModify> self(this);
    const bool takesUp = !isBusy() && mayDiscard();
    if (!self || !m_client.link.isLoggedIn())
        return false;
    if (!takesUp)
        return isAtItsHost();
    m_profile = profile;
    m_host = m_client.link.connection();
    m_reading = Reading::None;
    clearForm();
    m_form->showSettings({});
    m_form->server().note({});
    followState();
    // Behind the click that led here: the list's own doings are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcModify::readProfile);
    return true;
}

bool qrvrcModify::mayDiscard()
{
    if (!m_form->isChanged())
        return true;
    const QString where = isAtItsHost() ? QString() : u" of "_s + m_host.peer();
    return m_client.boxes.confirm(
        u"Confirmation Required!"_s,
        u"Changes to the profile '%1'%2 have not been saved. Do you want to discard them?"_s.arg(m_form->profileName(),
                                                                                                 where));
}

/// Whether the profile is one of the host that is connected.
bool qrvrcModify::isAtItsHost() const
{
    return m_client.link.isLoggedIn() && m_host.isSameHost(m_client.link.connection());
}

void qrvrcModify::readProfile()
{
    if (isBusy() || !isVisible() || !isAtItsHost())
        return;
    const QPointer<qrvrcModify> self(this);
    exchange(getProfileRequest(m_client.link.user(), m_profile.id), u"Reading the profile..."_s);
    if (!self || m_reading == Reading::Whole)
        return;
    m_form->server().note(m_reading == Reading::Partial
                              ? u"The profile could not be read whole, so it cannot be saved."_s
                              : u"The profile was not read, so it cannot be saved."_s);
}

void qrvrcModify::takeReply(std::string_view body)
{
    m_reading = Reading::Partial;
    ProfileSettings read;
    // What cannot be read ends the reading; what came before is shown all the same.
    const auto show = qScopeGuard([&] { m_form->showSettings(read); });
    readProfileSettings(body, m_client.bounds.shortListEntries, read);
    m_reading = Reading::Whole;
}

void qrvrcModify::addScript()
{
    if (isBusy())
        return;
    Script script = m_form->script();
    script.url = m_client.store.validateUrl(script.url);
    if (const auto fault = m_form->server().fault(script))
        return complain(*fault);
    const QPointer<qrvrcModify> self(this);
    const ScriptFinding finding = m_check.run(script);
    if (!self || finding == ScriptFinding::Stopped)
        return;
    if (const auto fault = m_form->server().fault(finding))
        return complain(*fault);
    m_form->server().add(script);
    if (finding == ScriptFinding::Validated)
        m_client.reporter.ReportMsg(MessageKind::Success, u"Server ID Validated Successfully."_s);
}

void qrvrcModify::save()
{
    if (isBusy() || m_reading != Reading::Whole)
        return;
    if (const auto fault = m_form->fault())
        return complain(*fault);
    if (!isAtItsHost())
        return m_client.reporter.ReportMsg(
            MessageKind::Failed,
            u"The profile was not modified: there is no connection to %1. What you entered is kept."_s.arg(
                m_host.peer()));
    send(m_form->changed());
}

void qrvrcModify::send(const ProfileSettings& settings)
{
    const QPointer<qrvrcModify> self(this);
    m_isRefused = false;
    const WaitEnd end =
        exchange(setProfileRequest(m_client.link.user(), m_profile.id, settings), u"Modifying the profile..."_s);
    if (!self)
        return;
    if (end != WaitEnd::Done)
        return m_client.reporter.ReportMsg(MessageKind::Failed,
                                           u"The tracker did not confirm that the profile was modified. What you "
                                           "entered is kept: open the profile again to try once more."_s);
    if (m_isRefused)
        return m_client.reporter.ReportMsg(MessageKind::Failed,
                                           u"The tracker refused to modify the profile. What you entered is kept."_s);
    m_form->takeAsRead(settings);
    m_client.reporter.ReportMsg(MessageKind::Success, u"Profile Modified"_s);
    if (!self)
        return;
    // While the box was open another window may have taken this one's place.
    if (isVisible())
        Q_EMIT closeWanted();
    else
        m_client.windows.unload(objectName());
}

WaitEnd qrvrcModify::exchange(const Request& request, const QString& doing)
{
    const QPointer<qrvrcModify> self(this);
    const WindowLock lock({m_navigation, this});
    setWaiting(ServerForm::Waiting::Tracker);
    m_form->server().note(doing);
    const WaitEnd end = ask(m_client.link, request);
    if (self) {
        setWaiting(ServerForm::Waiting::Nothing);
        m_form->server().note({});
    }
    return end;
}

/// Says what is wrong with a field and leads the user there.
void qrvrcModify::complain(const FieldFault& fault)
{
    const QPointer<QWidget> field(fault.field);
    m_client.reporter.ReportMsg(fault.kind, fault.text);
    if (!field || !field->isVisible())
        return;
    field->setFocus();
    if (auto* edit = qobject_cast<QLineEdit*>(field))
        edit->selectAll();
}

void qrvrcModify::setWaiting(ServerForm::Waiting waiting)
{
    m_waiting = waiting;
    if (isBusy())
        m_pointer.emplace(*this);
    else
        m_pointer.reset();
    m_form->server().showWaiting(waiting);
    followState();
}

void qrvrcModify::followState()
{
    cmdModify->setVisible(EditMode == 1);
    cmdModify->setEnabled(m_reading == Reading::Whole && !isBusy());
}
