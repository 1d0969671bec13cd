#include "platform/keyring/Keyring.h"
#include "support/AddRow.h"
#include "support/Desk.h"

#include <QCheckBox>
#include <QLineEdit>

#include <map>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class FakeKeyring : public Keyring
{
public:
    std::map<QString, QString> entries;
    bool isSilent = false;
    bool isLocked = false;

    void read(const QString& entry, Done done) override
    {
        const auto found = entries.find(entry);
        answer(done, {.isGood = found != entries.end(), .password = found == entries.end() ? u""_s : found->second});
    }
    void write(const QString& entry, const QString& password, Done done) override
    {
        if (!isLocked)
            entries[entry] = password;
        answer(done, {});
    }
    void remove(const QString& entry, Done done) override
    {
        entries.erase(entry);
        answer(done, {});
    }

private:
    void answer(const Done& done, const Answer& given) const
    {
        if (isSilent)
            return;
        const Answer told = isLocked ? Answer{.isGood = false, .fault = u"locked"_s} : given;
        QMetaObject::invokeMethod(
            qApp, [done, told] { done(told); }, Qt::QueuedConnection);
    }
};

struct KeyringDesk : Desk
{
    std::shared_ptr<FakeKeyring> ring = std::make_shared<FakeKeyring>();

    KeyringDesk()
    {
        keyring = ring;
        keyringLimit = 20ms;
        put("\\settings\\config.ini", "[Program]\r\nKeyring=1\r\n");
    }
    /// Logs in for the first time, and starts the client again.
    bool hasProfile()
    {
        return logIn() && QTest::qWaitFor([this] { return !ring->entries.empty(); }) && open();
    }
    bool connects()
    {
        chooseProfile(u"Home of admin"_s);
        click(u"cmdConnect"_s);
        return QTest::qWaitFor([this] { return link().isLoggedIn(); });
    }
    QByteArray stored() const { return bytesOf("\\profiles.ini"); }
};

} // namespace

class KeyringTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPasswordIsKeptThereAloneAndGoesWithItsProfile()
    {
        KeyringDesk desk;
        QVERIFY(desk.hasProfile());
        QVERIFY(desk.stored().contains("User=admin") && desk.stored().contains("Pass=\r\n"));
        QCOMPARE(desk.ring->entries.begin()->second, u"admin"_s);
        QVERIFY(desk.ring->entries.begin()->first.endsWith(u"/Home of admin"_s));
        QVERIFY(desk.connects());
        desk.link().close();
        desk.chooseProfile(u"Home of admin"_s);
        desk.click(u"cmdDelete"_s);
        QVERIFY(desk.ring->entries.empty());
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void withoutAnAnswerTheUserIsAsked_data()
    {
        addColumns<bool, bool, QString>("isSilent", "isLocked", "told");
        addRow("silent", true, false, u"It does not answer."_s);
        addRow("locked", false, true, u"locked"_s);
        addRow("nothing there", false, false, u"Please type it."_s);
    }
    void withoutAnAnswerTheUserIsAsked()
    {
        QFETCH(const QString, told);
        KeyringDesk desk;
        QVERIFY(desk.hasProfile());
        desk.ring->entries.clear();
        QFETCH(const bool, isSilent);
        QFETCH(const bool, isLocked);
        desk.ring->isSilent = isSilent;
        desk.ring->isLocked = isLocked;
        desk.chooseProfile(u"Home of admin"_s);
        desk.click(u"cmdConnect"_s);
        QTRY_COMPARE(desk.boxes.boxes.size(), 1);
        QVERIFY(desk.boxes.onlyText().endsWith(told));
        QTRY_VERIFY(desk.control(u"txtPass"_s).hasFocus());
        desk.type(u"txtPass"_s, u"admin"_s);
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QVERIFY(desk.stored().contains("Pass=\r\n"));
    }

    void switchedOffItGivesThemBack()
    {
        KeyringDesk desk;
        QVERIFY(desk.hasProfile());
        desk.frame().showWindow(u"qrvrcOptions"_s);
        desk.control<QCheckBox>(u"chkKeyring"_s).setChecked(false);
        desk.click(u"cmdSave"_s);
        QTRY_COMPARE(desk.boxes.boxes.size(), 3);
        QVERIFY(desk.boxes.boxes.constLast().text.endsWith(u": 1"_s));
        QVERIFY(desk.stored().contains("Pass=admin\r\n"));
        QTRY_VERIFY(desk.ring->entries.empty());
    }
};

QTEST_MAIN(KeyringTest)
#include "KeyringTest.moc"
