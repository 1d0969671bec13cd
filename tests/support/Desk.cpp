#include "support/Desk.h"

#include <QAbstractItemModel>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 30'000; // milliseconds; only a fault makes anybody wait that long

QString asText(const std::filesystem::path& path)
{
    return QString::fromStdU16String(path.u16string());
}

} // namespace

Desk::Desk(practice::World world) : tracker(std::move(world))
{
    std::filesystem::copy(QRVRC_SHIPPED_DIR, path(""), std::filesystem::copy_options::recursive);
    if (!tracker.listen())
        qFatal("the practice tracker has no port");
    if (!operatorSide.listen())
        qFatal("the operator has no port");
    tracker.world().supportPort = operatorSide.port();
}

Desk::~Desk()
{
    m_frame.reset();
    QThreadPool::globalInstance()->waitForDone(); // what it left to other threads still works on the folder
}

bool Desk::open()
{
    m_frame = std::make_unique<qrvrcMain>(Setup{.folder = path(""),
                                                .makerHost = makerHost,
                                                .version = "3.0.1.0",
                                                .boxes = hasRealBoxes ? nullptr : &boxes,
                                                .bounds = bounds,
                                                .support = limits,
                                                .keyring = keyring,
                                                .keyringLimit = keyringLimit});
    if (!m_frame->MDIFormLoad())
        return false;
    m_frame->show();
    return QTest::qWaitForWindowActive(m_frame.get());
}

std::filesystem::path Desk::path(const char* layoutName) const
{
    return AppFolder(m_folder.path().toStdU16String()).path(layoutName);
}

void Desk::put(const char* layoutName, const QByteArray& bytes) const
{
    const std::filesystem::path target = path(layoutName);
    std::filesystem::create_directories(target.parent_path());
    QFile file(asText(target));
    if (!file.open(QFile::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", layoutName);
}

QByteArray Desk::bytesOf(const char* layoutName) const
{
    QFile file(asText(path(layoutName)));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QString Desk::linkStatus()
{
    return control(u"fmeStatus"_s)
        .findChild<QLabel*>(u"lblStatus"_s)
        ->text(); // the status bar has one of that name too
}

void Desk::typeProfile(const QString& name, const QString& user, const QString& password, quint16 port)
{
    type(u"txtProfile"_s, name);
    type(u"txtHost"_s, u"127.0.0.1"_s);
    type(u"txtPort"_s, QString::number(port));
    type(u"txtUser"_s, user);
    type(u"txtPass"_s, password);
}

bool Desk::logIn(const QString& user)
{
    if (!m_frame && !open())
        return false;
    chooseProfile(u"New Profile"_s);
    typeProfile(u"Home of "_s + user, user, user, tracker.port());
    click(u"cmdConnect"_s);
    const qsizetype asked = requestCount("GetProfiles");
    const bool reached = QTest::qWaitFor([&] { return requestCount("GetProfiles") > asked; }, patience);
    if (auto* clock = m_frame->findChild<QTimer*>(u"tmrRefresh"_s))
        clock->stop();
    return reached && settles() && control(u"qrvrcProfilesList"_s).isVisible();
}

QAbstractItemModel& Desk::grid()
{
    return *control<QTableView>(u"fgProfiles"_s).model();
}

bool Desk::refreshQuietly()
{
    auto& clock = control<QTimer>(u"tmrRefresh"_s);
    const qsizetype asked = requestCount("GetProfiles");
    clock.start(1);
    const bool hasAsked = QTest::qWaitFor([&] { return requestCount("GetProfiles") > asked; }, patience);
    clock.stop();
    return hasAsked && settles();
}

void Desk::beforeAnswer(const QByteArray& request, std::function<void()> meanwhile)
{
    tracker.hold(request);
    auto* once = new QObject(m_frame.get());
    QObject::connect(&tracker, &practice::Tracker::requestReceived, once,
                     [this, once, request, meanwhile = std::move(meanwhile)](const QByteArray& name) {
                         if (name != request)
                             return;
                         once->deleteLater();
                         QTimer::singleShot(0, m_frame.get(), [this, meanwhile] {
                             meanwhile();
                             tracker.releaseAll();
                         });
                     });
}

bool Desk::settles()
{
    return QTest::qWaitFor([this] { return !link().pending(); }, patience);
}

bool Desk::answered(const QByteArray& request, const std::function<void()>& act)
{
    const qsizetype asked = requestCount(request);
    act();
    return QTest::qWaitFor([&] { return requestCount(request) > asked; }, patience) && settles();
}

QByteArray Desk::lastRequest(const QByteArray& name) const
{
    for (auto request = tracker.requests().crbegin(); request != tracker.requests().crend(); ++request) {
        if (request->startsWith(name + '_'))
            return *request;
    }
    return {};
}

qsizetype Desk::requestCount(const QByteArray& name) const
{
    return std::count_if(tracker.requests().begin(), tracker.requests().end(),
                         [&name](const QByteArray& request) { return request.startsWith(name + '_'); });
}
