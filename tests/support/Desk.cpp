#include "support/Desk.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTableView>
#include <QTest>
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

Desk::~Desk() = default;

bool Desk::open()
{
    m_frame = std::make_unique<qrvrcMain>(
        Setup{.folder = path(""), .makerHost = makerHost, .version = "3.0.1.0", .boxes = &boxes});
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

void Desk::click(const QString& name)
{
    QTest::mouseClick(&control(name), Qt::LeftButton);
}

void Desk::clickTab(const QString& strip, const QString& caption)
{
    auto& bar = control<QTabBar>(strip);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(static_cast<int>(tabs(strip).indexOf(caption))).center());
}

void Desk::type(const QString& field, const QString& text)
{
    auto& edit = control<QLineEdit>(field);
    if (!edit.isEnabled())
        qFatal("%s takes no text now", qPrintable(field));
    edit.selectAll();
    QTest::keyClick(&edit, Qt::Key_Delete);
    edit.insert(text); // as an input method does, so that no character is beyond the keyboard
}

QString Desk::text(const QString& field)
{
    return control<QLineEdit>(field).text();
}

QStringList Desk::tabs(const QString& strip)
{
    const auto& bar = control<QTabBar>(strip);
    QStringList captions;
    for (int index = 0; index < bar.count(); ++index)
        captions += bar.tabText(index);
    return captions;
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

void Desk::chooseProfile(const QString& name)
{
    auto& list = control<QComboBox>(u"cboProfile"_s);
    QTest::keyClick(&list, Qt::Key_Home);
    for (int step = 1; step < list.count() && list.currentText() != name; ++step)
        QTest::keyClick(&list, Qt::Key_Down);
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

QStringList Desk::column(int column)
{
    QStringList texts;
    for (int row = 0; row < grid().rowCount(); ++row)
        texts += grid().index(row, column).data().toString();
    return texts;
}

void Desk::clickRow(int row)
{
    auto& view = control<QTableView>(u"fgProfiles"_s);
    view.scrollTo(grid().index(row, 1));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(grid().index(row, 1)).center());
}

bool Desk::refreshQuietly()
{
    const qsizetype asked = requestCount("GetProfiles");
    auto& clock = control<QTimer>(u"tmrRefresh"_s);
    clock.start(1);
    const bool hasAsked = QTest::qWaitFor([&] { return requestCount("GetProfiles") > asked; }, patience);
    clock.stop();
    return hasAsked && settles();
}

bool Desk::settles()
{
    return QTest::qWaitFor([this] { return !link().isAwaitingReply(); }, patience);
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
