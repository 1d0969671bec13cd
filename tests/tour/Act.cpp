#include "tour/Act.h"

#include "app/qrvrcMain.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QPushButton>
#include <QScreen>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tour {

Act::Act(qrvrcMain& frame, const practice::World& world, const QDir& pictures)
    : m_frame(frame),
      m_tracker(world),
      m_camera(pictures)
{}

bool Act::play()
{
    // The port is known from now on, and nobody listens there until the tracker is to be found.
    if (!m_tracker.listen()) {
        m_failure = u"no port for the host link"_s;
        return false;
    }
    m_tracker.stopListening();
    m_tracker.setLively(false); // the pictures of one day look like those of another
    const QString failurePicture = u"failure.png"_s;
    m_camera.prepare(failurePicture); // an older one would tell of a failure that is over
    m_script.onFailure = [this, failurePicture] {
        m_failure = whatStands();
        m_camera.takeAtOnce(failurePicture);
    };
    m_script.start();
    m_isStarted = m_frame.MDIFormLoad(); // the script goes on in what this opens
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

void Act::picture(const QString& file)
{
    m_camera.prepare(file); // a tour that fails leaves no picture of an earlier one
    m_script.add(
        u"the picture %1 is taken"_s.arg(file), [this, file] { m_camera.prepare(file); },
        [this, file, stillTrue = m_script.lastExpectation()] { return stillTrue() && m_camera.take(file); });
}

void Act::arrive()
{
    m_script.await(u"the program has started"_s, [this] { return m_isStarted; });
    m_script.add(
        u"the login window is there and active"_s,
        [this] {
            m_frame.show();
            m_frame.activateWindow();
            // Out of the way, or what happens to lie under the pointer would look touched.
            QCursor::setPos(m_frame.screen()->geometry().bottomRight());
        },
        [this] {
            return m_frame.isActiveWindow() && m_frame.windowHandle()->isExposed() && seen<QWidget>(u"qrvrcLogin"_s) &&
                   hasFocus(u"cboProfile"_s) && isLoggedOut();
        });
}

void Act::awaitFrame()
{
    m_script.add(
        u"the frame is active again"_s,
        [this] {
            if (!hasWindowManager())
                m_frame.activateWindow();
        },
        [this] { return m_frame.isActiveWindow(); });
}

void Act::answerBox(const QString& what, QMessageBox::StandardButton answer)
{
    m_script.add(
        what,
        [answer] {
            if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
                click(box->button(answer));
        },
        [] { return !seen<QMessageBox>(u"msgBox"_s); });
}

void Act::dismissBox(const QString& what)
{
    answerBox(what, QMessageBox::Ok);
    awaitFrame();
}

void Act::typeConnection(const QString& profileName)
{
    m_script.add(
        u"the fields of the login window take what is typed"_s,
        [this, profileName] {
            click(u"txtProfile"_s);
            for (const QByteArray& text : {profileName.toLatin1(), QByteArray("127.0.0.1"),
                                           QByteArray::number(m_tracker.port()), QByteArray("admin")}) {
                type(text);
                press(Qt::Key_Tab);
            }
            type("admin");
            press(Qt::Key_Tab);
        },
        [this, profileName] {
            return fieldText(u"txtProfile"_s) == profileName && fieldText(u"txtHost"_s) == u"127.0.0.1"_s &&
                   fieldText(u"txtPort"_s) == QString::number(m_tracker.port()) &&
                   fieldText(u"txtUser"_s) == u"admin"_s && fieldText(u"txtPass"_s) == u"admin"_s &&
                   hasFocus(u"cmdConnect"_s);
        });
}

void Act::askToQuit()
{
    m_script.add(
        u"closing the frame asks first"_s, [this] { m_frame.windowHandle()->close(); },
        [] { return boxSays(u"Are you sure you want to quit?"_s); });
}

void Act::confirmQuit()
{
    m_script.add(
        u"the answer Yes ends the program"_s,
        [] {
            if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
                click(box->button(QMessageBox::Yes));
        },
        [this] { return !m_frame.isVisible(); });
}

} // namespace tour
