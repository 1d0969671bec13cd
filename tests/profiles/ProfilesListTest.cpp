#include "profiles/qrvrcProfilesList.h"

#include "support/Desk.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QTableView>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

constexpr int modColumn = 2;
constexpr int statusColumn = 8;

/// One profile as a tracker would send it.
struct Sent
{
    QByteArray id = "1";
    QByteArray name = "Alpha";
    QByteArray picture = {};
    QByteArray status = "5";
    QByteArray bytes = {}; ///< of the picture, as sent
};

QByteArray element(const Sent& profile)
{
    const QList<QByteArray> fields{profile.id, profile.name, profile.picture, {}, {}, "TDM", {},
                                   {},         "text",       profile.status,  "v"};
    return fields.join('|').toBase64();
}

/// The body of a "GetProfiles" reply.
QByteArray reply(const QList<Sent>& profiles)
{
    QByteArray body = "Profiles";
    QList<QByteArray> pictures;
    for (const Sent& profile : profiles) {
        body += '_' + element(profile);
        pictures += profile.bytes;
    }
    return body + '_' + pictures.join('|');
}

qrvrcProfilesList& list(Desk& desk)
{
    return desk.control<qrvrcProfilesList>(u"qrvrcProfilesList"_s);
}

/// Refreshes the list, which is answered with exactly this body.
void refreshWith(Desk& desk, const QByteArray& body)
{
    desk.tracker.answerNextWith("GetProfiles", body);
    list(desk).FormReload();
}

bool hasPicture(Desk& desk, int row, int column)
{
    return !desk.grid().index(row, column).data(Qt::DecorationRole).value<QPixmap>().isNull();
}

/// Everything in and below the client's folder, one path a line.
QStringList contents(const Desk& desk)
{
    QStringList names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(desk.path("")))
        names += QString::fromStdU16String(entry.path().lexically_relative(desk.path("")).u16string());
    names.removeIf([](const QString& name) { return name == u"ErrorLog.txt"_s || name.startsWith(u"settings"_s); });
    names.sort();
    return names;
}

} // namespace

class ProfilesListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyProfileIsARow()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        const practice::Profile& alpha = *desk.tracker.world().profile(1);
        QStringList cells;
        for (int column = 0; column < desk.grid().columnCount(); ++column)
            cells += desk.grid().index(0, column).data().toString();
        QCOMPARE(cells, (QStringList{u"1"_s,
                                     u"Alpha"_s,
                                     {},
                                     u"2/16"_s,
                                     QString::fromLatin1(alpha.map),
                                     u"Coop"_s,
                                     u"00:10:00"_s,
                                     QString::fromLatin1(alpha.statusText),
                                     {}}));
        QCOMPARE(desk.column(1), (QStringList{u"Alpha"_s, u"Bravo"_s, u"Charlie"_s}));
        QCOMPARE(desk.column(4).value(1), QString());
        QCOMPARE(desk.grid().index(1, 0).data(Qt::UserRole).toInt(), 5);
        QVERIFY(hasPicture(desk, 0, modColumn) && !hasPicture(desk, 1, modColumn));
        QVERIFY(hasPicture(desk, 0, statusColumn) && hasPicture(desk, 1, statusColumn));
        QCOMPARE(desk.core().selected.row, 1);
        QCOMPARE(desk.core().selected.id, 1);
        QVERIFY(desk.exists("\\profiles\\1") && desk.exists("\\profiles\\3"));
        QVERIFY(desk.control<QLabel>(u"lblHM"_s).text() == u"Hosting Map"_s);
    }

    void aRefreshShowsWhatArrivedAndEnds_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("boxes");
        QTest::newRow("reply in chunks of 9 bytes") << Fault::chunks(9) << 3 << 0;
        QTest::newRow("twice") << Fault::twice() << 3 << 0;
        QTest::newRow("letters for a length") << Fault::wrongPrefix() << 3 << 0;
        QTest::newRow("far too large a length") << Fault::hugePrefix() << 3 << 0;
        QTest::newRow("third profile is garbage") << Fault::garbageInElement(3) << 2 << 1;
        QTest::newRow("first profile is garbage") << Fault::garbageInElement(1) << 0 << 1;
        QTest::newRow("nothing in it, which is no list") << Fault::emptyBody() << 3 << 0;
        QTest::newRow("cut off inside a profile") << Fault::cutOffAfter(60) << 0 << 0;
        QTest::newRow("reset") << Fault::reset() << 0 << 0;
        QTest::newRow("silent inside a profile") << Fault::silentAfter(60) << 0 << 1;
        QTest::newRow("never") << Fault::never() << 0 << 1;
    }
    void aRefreshShowsWhatArrivedAndEnds()
    {
        QFETCH(const Fault, fault);
        QFETCH(const int, rows);
        QFETCH(const int, boxes);
        Desk desk;
        QVERIFY(desk.logIn());
        desk.tracker.answerNext("GetProfiles", fault);
        const bool isSilent = fault.kind() == Fault::Kind::Silent || fault.kind() == Fault::Kind::Never;
        if (isSilent)
            desk.link().replyLimit = 30ms;
        list(desk).FormReload();
        QCOMPARE(list(desk).rowCount(), rows);
        QTRY_COMPARE(desk.boxes.boxes.size(), boxes);
        QVERIFY(desk.frame().isEnabled());
        QVERIFY(desk.control(u"tsMain"_s).isEnabled());
        QCOMPARE(desk.core().selected.row, rows > 0 ? 1 : 0);
        QCOMPARE(desk.core().selected.hasProfiles(), rows > 0);
    }

    void brokenRecordsEndTheList_data()
    {
        QTest::addColumn<QByteArray>("element");
        QTest::addColumn<QString>("error");
        QTest::newRow("too few fields") << "1|Alpha|x"_ba.toBase64() << u"Error 9: "_s;
        QTest::newRow("a status that is no number") << element({.status = "two"}) << u"Error 13: "_s;
        QTest::newRow("an id that leaves the folder") << element({.id = ".."}) << u"Error 70: "_s;
        QTest::newRow("an id that is a path") << element({.id = "..\\..\\evil"}) << u"Error 70: "_s;
        QTest::newRow("an id with a slash") << element({.id = "../../evil"}) << u"Error 70: "_s;
        QTest::newRow("an empty id") << element({.id = ""}) << u"Error 70: "_s;
        QTest::newRow("a picture that leaves the folder") << element({.picture = "..\\..\\x.gif"}) << u"Error 70: "_s;
        QTest::newRow("a picture with a slash") << element({.picture = "a/b"}) << u"Error 70: "_s;
        QTest::newRow("a picture on a drive") << element({.picture = "c:x.gif"}) << u"Error 70: "_s;
        QTest::newRow("a picture that is a device") << element({.picture = "con"}) << u"Error 70: "_s;
        QTest::newRow("a device with an ending") << element({.picture = "NUL.gif"}) << u"Error 70: "_s;
    }
    void brokenRecordsEndTheList()
    {
        QFETCH(const QByteArray, element);
        QFETCH(const QString, error);
        Desk desk;
        QVERIFY(desk.logIn());
        refreshWith(desk, reply({Sent{}}));
        const QStringList before = contents(desk);
        refreshWith(desk, "Profiles_" + ::element({}) + '_' + element + '_' + ::element({}) + "_|71/73/70/|71/");
        QCOMPARE(list(desk).rowCount(), 1); // those before it stay
        QVERIFY(desk.boxes.onlyText().contains(error));
        QVERIFY(desk.boxes.onlyText().endsWith(u"Function/Sub: HandleData"_s));
        QCOMPARE(contents(desk), before);
        QVERIFY(!std::filesystem::exists(desk.path("").parent_path() / "evil"));
    }

    void picturesAreKeptUnderTheirNames_data()
    {
        QTest::addColumn<QByteArray>("held");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("kept");
        QTest::newRow("new") << QByteArray() << "71/73/70/"_ba
                             << "GIF"_ba;
        QTest::newRow("the last piece is no byte") << QByteArray() << "71/73/70"_ba
                                                   << "GI"_ba;
        QTest::newRow("none sent, none held") << QByteArray() << QByteArray() << QByteArray();
        QTest::newRow("none sent, one held") << "GIF89a"_ba << QByteArray() << "GIF89a"_ba;
        QTest::newRow("a byte out of range keeps what is held") << "GIF89a"_ba
                                                                << "71/256/"_ba
                                                                << "GIF89a"_ba;
    }
    void picturesAreKeptUnderTheirNames()
    {
        QFETCH(const QByteArray, held);
        QFETCH(const QByteArray, bytes);
        Desk desk;
        if (!held.isEmpty())
            desk.put("\\mods\\CTF.gif", held);
        QVERIFY(desk.logIn());
        refreshWith(desk, reply({Sent{.picture = "ctf.gif", .bytes = bytes}}));
        QTEST(desk.bytesOf("\\mods\\CTF.gif"), "kept");
        QCOMPARE(hasPicture(desk, 0, modColumn), false); // three letters are no picture, and no fault
        QCOMPARE(list(desk).rowCount(), bytes.contains("256") ? 0 : 1);
    }

    void heldPicturesAreNotAskedForAgain()
    {
        Desk desk;
        desk.put("\\mods\\readme.txt", "no picture");
        QVERIFY(desk.logIn());
        QCOMPARE(desk.lastRequest("GetProfiles"), "GetProfiles_admin__VB6_");
        list(desk).FormReload();
        QCOMPARE(desk.lastRequest("GetProfiles"),
                 "GetProfiles_admin_" + "desert.gif|islands.gif"_ba.toBase64() + "_VB6_");
        QVERIFY(hasPicture(desk, 0, modColumn) && hasPicture(desk, 2, modColumn));
    }

    void aStatusOutOfRangeHasNoPictureAndIsKept_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("picture");
        QTest::newRow("-1") << -1 << false;
        QTest::newRow("0") << 0 << true;
        QTest::newRow("5") << 5 << true;
        QTest::newRow("6") << 6 << false;
        QTest::newRow("greatest") << std::numeric_limits<int>::max() << false;
    }
    void aStatusOutOfRangeHasNoPictureAndIsKept()
    {
        QFETCH(const int, status);
        Desk desk;
        QVERIFY(desk.logIn());
        refreshWith(desk, reply({Sent{.status = QByteArray::number(status)}}));
        QCOMPARE(desk.grid().index(0, 0).data(Qt::UserRole).toInt(), status);
        QCOMPARE(desk.core().selected.status, status);
        QTEST(hasPicture(desk, 0, statusColumn), "picture");
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void manyProfilesAreAllShownAndCanBeSelected()
    {
        Desk desk(practice::World::many(80, 1));
        QVERIFY(desk.logIn());
        QCOMPARE(list(desk).rowCount(), 80);
        QCOMPARE(desk.core().selected.gameVersions.size(), std::size_t{81});
        desk.clickRow(79);
        QCOMPARE(desk.core().selected.row, 80);
        QCOMPARE(desk.core().selected.id, 80);
        QTest::keyClick(&desk.control(u"fgProfiles"_s), Qt::Key_Up);
        QCOMPARE(desk.core().selected.id, 79);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aQuietRefreshKeepsTheSelectedProfile()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.clickRow(2);
        practice::World& world = desk.tracker.world();
        world.profiles.removeFirst();
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(desk.column(1), (QStringList{u"Bravo"_s, u"Charlie"_s}));
        QCOMPARE(desk.core().selected.id, 3);
        QCOMPARE(desk.core().selected.row, 2);
        world.profiles.removeLast();
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(desk.core().selected.id, 2); // its profile is gone: the first one
        world.profiles.clear();
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(desk.core().selected.id, 0);
        QCOMPARE(desk.core().selected.row, 0);
        QVERIFY(!desk.core().selected.hasProfiles());
        QVERIFY(!desk.control(u"cmdModify"_s).isEnabled());
        world.profiles = practice::World::small().profiles;
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(desk.core().selected.id, 1);
        QVERIFY(desk.control(u"cmdModify"_s).isEnabled()); // as after any other refresh
    }

    void aDropEmptiesTheList()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.clickRow(1);
        desk.tracker.resetLinks();
        QTRY_COMPARE(list(desk).rowCount(), 0);
        QCOMPARE(desk.core().selected.id, 0);
        QVERIFY(!desk.core().selected.hasProfiles());
        QVERIFY(!desk.control(u"cmdAttach"_s).isEnabled());
        const qsizetype asked = desk.requestCount("GetProfiles");
        list(desk).FormReload(); // logged out: asks nobody
        QCOMPARE(desk.requestCount("GetProfiles"), asked);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void theMenuOpensOnTheRowUnderTheMouse()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        auto& view = desk.control<QTableView>(u"fgProfiles"_s);
        auto& menu = desk.control<QMenu>(u"mnuMain"_s);
        const auto rightClick = [&](QPoint at) {
            QTest::mouseClick(view.viewport(), Qt::RightButton, {}, at);
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, view.viewport()->mapToGlobal(at));
            QApplication::sendEvent(view.viewport(), &event);
        };
        rightClick(view.visualRect(desk.grid().index(1, 4)).center());
        QTRY_VERIFY(menu.isVisible());
        QCOMPARE(desk.core().selected.id, 2);
        QStringList entries;
        for (const QAction* entry : menu.actions())
            entries += entry->isSeparator() ? u"-"_s : entry->objectName();
        QCOMPARE(
            entries.join(u' '),
            u"mnuAttach mnuDetach - mnuStart mnuStop mnuMode - mnuModify mnuDelete - mnuPlayers mnuFileManager - mnuCopy"_s);
        menu.close();
        rightClick(QPoint(5, view.viewport()->height() - 3)); // below the last row
        QVERIFY(!menu.isVisible());
        QCOMPARE(desk.core().selected.id, 2);
    }
};

QTEST_MAIN(ProfilesListTest)
#include "ProfilesListTest.moc"
