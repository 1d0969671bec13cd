#include "tour/Act.h"

#include "app/qrvrcMain.h"
#include "tour/Screen.h"

#include <QMenu>
#include <QScreen>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tour {

Act::Act(const Stage& stage)
    : frame(stage.frame),
      web(stage.web),
      home(stage.home),
      tracker(practice::World::lively()),
      camera(stage.pictures)
{}

bool Act::play()
{
    // The port is known from now on, and nobody listens there until the tracker is to be found.
    if (!tracker.listen()) {
        m_failure = u"no port for the host link"_s;
        return false;
    }
    tracker.stopListening();
    tracker.setLively(false); // the pictures of one day look like those of another
    const QString failurePicture = u"failure.png"_s;
    camera.prepare(failurePicture); // an older one would tell of a failure that is over
    m_script.onFailure = [this, failurePicture] {
        m_failure = whatStands();
        camera.takeAtOnce(failurePicture);
    };
    m_script.start();
    m_isStarted = frame.MDIFormLoad(); // the script goes on in what this opens
    if (m_isStarted)
        QApplication::exec();
    return m_script.isThrough();
}

QString Act::complaint() const
{
    return m_failure.isEmpty() ? u"ended before it came true: "_s + m_script.expectation() : m_failure;
}

QString Act::whatStands() const
{
    QString line = u"did not come true: "_s + m_script.expectation();
    if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
        line += u" (a box \"%1\" says \"%2\")"_s.arg(box->windowTitle(), box->text().simplified());
    return line;
}

void Act::step(const QString& what, std::function<void()> act, std::function<bool()> until)
{
    m_script.add(what, std::move(act), std::move(until));
}

void Act::await(const QString& what, std::function<bool()> until)
{
    m_script.await(what, std::move(until));
}

void Act::picture(const QString& file)
{
    camera.prepare(file); // a tour that fails leaves no picture of an earlier one
    step(
        u"the picture %1 is taken"_s.arg(file), [this, file] { camera.prepare(file); },
        [this, file, stillTrue = m_script.lastExpectation()] { return stillTrue() && camera.take(file); });
}

void Act::arrive()
{
    await(u"the program has started"_s, [this] { return m_isStarted; });
    step(
        u"the login window is there and active"_s,
        [this] {
            frame.show();
            frame.activateWindow();
            // Out of the way, or what happens to lie under the pointer would look touched.
            QCursor::setPos(frame.screen()->geometry().bottomRight());
        },
        [this] {
            return frame.isActiveWindow() && frame.windowHandle()->isExposed() && seen(u"qrvrcLogin"_s) &&
                   hasFocus(u"cboProfile"_s) && isLoggedOut();
        });
}

void Act::awaitFrame()
{
    step(
        u"the frame is active again"_s,
        [this] {
            if (!hasWindowManager())
                frame.activateWindow();
        },
        [this] { return frame.isActiveWindow(); });
}

void Act::escape(const QString& name)
{
    step(
        u"Escape closes "_s + name, [] { press(Qt::Key_Escape); }, [name] { return !seen(name); });
}

void Act::answerBox(QMessageBox::StandardButton answer)
{
    step(
        u"the box goes that came with: "_s + m_script.lastSentence(),
        [answer] {
            if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
                click(box->button(answer));
        },
        [] { return !seen(u"msgBox"_s); });
}

void Act::dismissBox()
{
    answerBox();
    awaitFrame();
}

void Act::openMenu(int row)
{
    step(
        u"a right click selects row %1 and opens its menu"_s.arg(row),
        [row] { clickRow(u"fgProfiles"_s, row, Qt::RightButton); },
        [row] { return seen<QMenu>(u"mnuMain"_s) && selectedRow() == row; });
}

void Act::typeConnection()
{
    step(
        u"the fields of the login window take what is typed"_s,
        [this] {
            click(u"txtProfile"_s);
            for (const QByteArray& text :
                 {QByteArray("Practice host"), QByteArray("127.0.0.1"), QByteArray::number(tracker.port()),
                  QByteArray("admin"), QByteArray("admin")}) {
                type(text);
                press(Qt::Key_Tab);
            }
        },
        [this] {
            return textOf(u"txtProfile"_s) == u"Practice host"_s && textOf(u"txtHost"_s) == u"127.0.0.1"_s &&
                   textOf(u"txtPort"_s) == QString::number(tracker.port()) && textOf(u"txtUser"_s) == u"admin"_s &&
                   textOf(u"txtPass"_s) == u"admin"_s && hasFocus(u"chkRemember"_s);
        });
}

void Act::connect()
{
    step(
        u"the profile list is there after the login"_s,
        [this] {
            tracker.listen(tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && selectedRow() == 0; });
}

void Act::signIn()
{
    arrive();
    typeConnection();
    connect();
}

void Act::signInAs(const QByteArray& account)
{
    step(
        u"the login window is there once the link is gone"_s, [this] { tracker.closeLinks(); }, isLoggedOut);
    step(
        u"%1 sees the profile list"_s.arg(QLatin1String(account)),
        [account] {
            enter(u"txtUser"_s, account);
            enter(u"txtPass"_s, account);
            press(Qt::Key_Return);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && selectedRow() == 0; });
}

void Act::quit(const QString& file)
{
    step(
        u"closing the frame asks first"_s, [this] { frame.windowHandle()->close(); },
        [] { return boxSays(u"Are you sure you want to quit?"_s); });
    if (!file.isEmpty())
        picture(file);
    step(
        u"the answer Yes ends the program"_s,
        [] {
            if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
                click(box->button(QMessageBox::Yes));
        },
        [this] { return !frame.isVisible(); });
}

} // namespace tour
