#include "profiles/list/qrvrcProfilesList.h"

#include "profiles/list/ActionUser.h"
#include "support/AddRow.h"
#include "support/LoggedIn.h"

#include <QAbstractItemModel>
#include <QBuffer>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QScrollBar>
#include <QSignalSpy>
#include <QThreadPool>

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

/// Waits for what is done in other threads, and for what it leads to.
void finishFiles()
{
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

/// A picture of these many points and, with zeros behind it, bytes.
QByteArray pictureOf(QSize size, qsizetype bytes = 0)
{
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QBuffer::WriteOnly);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.save(&buffer, "PNG");
    return content.leftJustified(bytes, '\0');
}

/// As a tracker spells bytes out.
QByteArray spelled(const QByteArray& bytes)
{
    QByteArray text;
    for (const char byte : bytes)
        text += QByteArray::number(static_cast<unsigned char>(byte)) + '/';
    return text;
}

constexpr int none = -1;

/// Id of the selected profile as the rest of the program knows it.
int selectedId(Desk& desk)
{
    const auto& profile = desk.core().selected.profile;
    return profile ? profile->id : none;
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
        LoggedIn<Desk> desk;
        const practice::Profile& alpha = *desk.tracker.world().profile(1);
        QCOMPARE(desk.in(u"qrvrcProfilesList"_s).cells(u"fgProfiles"_s, 0).join(u'|').toLatin1(),
                 "1|Alpha||2/16|" + alpha.map + "|Coop|00:10:00|" + alpha.statusText + '|');
        QCOMPARE(desk.column(1), (QStringList{u"Alpha"_s, u"Bravo"_s, u"Charlie"_s}));
        QCOMPARE(desk.column(4).value(1), QString());
        QCOMPARE(desk.grid().index(1, 0).data(Qt::UserRole).toInt(), 5);
        finishFiles();
        QVERIFY(hasPicture(desk, 0, modColumn) && !hasPicture(desk, 1, modColumn));
        QVERIFY(hasPicture(desk, 0, statusColumn) && hasPicture(desk, 1, statusColumn));
        QCOMPARE(selectedId(desk), 1);
        QVERIFY(desk.exists("\\profiles\\1") && desk.exists("\\profiles\\3"));
        QVERIFY(desk.control<QLabel>(u"lblHM"_s).text() == u"Hosting Map"_s);
    }

    void aRefreshShowsWhatArrivedAndEnds_data()
    {
        addColumns<Fault, int, int>("fault", "rows", "boxes");
        addRow("twice", Fault::twice(), 3, 0);
        addRow("third profile is garbage", Fault::garbageInElement(3), 2, 1);
        addRow("first profile is garbage", Fault::garbageInElement(1), 0, 1);
        addRow("nothing in it, which is no list", Fault::emptyBody(), 3, 0);
        addRow("cut off inside a profile", Fault::cutOffAfter(60), 0, 0);
        addRow("silent inside a profile", Fault::silentAfter(60), 0, 1);
        addRow("never", Fault::never(), 0, 1);
    }
    void aRefreshShowsWhatArrivedAndEnds()
    {
        QFETCH(const Fault, fault);
        QFETCH(const int, rows);
        QFETCH(const int, boxes);
        LoggedIn<Desk> desk;
        desk.tracker.answerNext("GetProfiles", fault);
        const bool isSilent = fault.kind() == Fault::Kind::Silent || fault.kind() == Fault::Kind::Never;
        if (isSilent)
            desk.link().replyLimit = 30ms;
        list(desk).FormReload();
        QCOMPARE(list(desk).rowCount(), rows);
        QTRY_COMPARE(desk.boxes.boxes.size(), boxes);
        QVERIFY(desk.frame().isEnabled());
        QVERIFY(desk.control(u"tsMain"_s).isEnabled());
        QCOMPARE(selectedId(desk), rows > 0 ? 1 : none);
        QCOMPARE(desk.core().selected.hasProfiles, rows > 0);
    }

    void brokenRecordsEndTheList_data()
    {
        addColumns<QByteArray, QString>("element", "error");
        addRow("too few fields", "1|Alpha|x"_ba.toBase64(), u"Error 9: "_s);
        addRow("an id that leaves the folder", element({.id = ".."}), u"Error 13: "_s);
        addRow("an id that is a path", element({.id = "..\\..\\evil"}), u"Error 13: "_s);
        addRow("an empty id", element({.id = ""}), u"Error 13: "_s);
        addRow("a picture that leaves the folder", element({.picture = "..\\..\\x.gif"}), u"Error 70: "_s);
        addRow("a picture with a slash", element({.picture = "a/b"}), u"Error 70: "_s);
        addRow("a picture on a drive", element({.picture = "c:x.gif"}), u"Error 70: "_s);
        addRow("a picture that is a device", element({.picture = "con"}), u"Error 70: "_s);
    }
    void brokenRecordsEndTheList()
    {
        QFETCH(const QByteArray, element);
        QFETCH(const QString, error);
        LoggedIn<Desk> desk;
        refreshWith(desk, reply({Sent{}}));
        finishFiles();
        const QStringList before = contents(desk);
        refreshWith(desk, "Profiles_" + ::element({}) + '_' + element + '_' + ::element({}) + "_|71/73/70/|71/");
        QCOMPARE(list(desk).rowCount(), 1); // those before it stay
        QTRY_VERIFY(desk.boxes.onlyText().contains(error));
        QVERIFY(desk.boxes.onlyText().endsWith(u"Function/Sub: HandleData"_s));
        finishFiles();
        QCOMPARE(contents(desk), before);
        QVERIFY(!std::filesystem::exists(desk.path("").parent_path() / "evil"));
    }

    void picturesAreKeptUnderTheirNames_data()
    {
        // isTold: what is wrong
        addColumns<QByteArray, QByteArray, QByteArray, QByteArray, bool>("name", "held", "sent", "kept", "isTold");
        const QByteArray gif = "ctf.gif";
        const QByteArray good = pictureOf({16, 16});
        const QByteArray old = pictureOf({8, 8});
        const auto most = static_cast<qsizetype>(Bounds().modPictureBytes);
        const QByteArray widest = pictureOf({512, 512});
        const QByteArray heaviest = pictureOf({16, 16}, most);
        addRow("new", gif, QByteArray(), spelled(good), good, false);
        addRow("in the place of another", gif, old, spelled(good), good, false);
        addRow("none sent, none held", gif, QByteArray(), QByteArray(), QByteArray(), false);
        addRow("none sent, one held", gif, old, QByteArray(), old, false);
        addRow("a byte out of range", gif, old, "71/256/"_ba, old, true);
        addRow("as many points as may be", gif, QByteArray(), spelled(widest), widest, false);
        addRow("a point more", gif, QByteArray(), spelled(pictureOf({513, 1})), QByteArray(), true);
        addRow("as many bytes as may be", gif, QByteArray(), spelled(heaviest), heaviest, false);
        addRow("a byte more", gif, QByteArray(), spelled(pictureOf({16, 16}, most + 1)), QByteArray(), true);
        addRow("a program by its name", "ctf.exe"_ba, QByteArray(), spelled(good), QByteArray(), true);
        addRow("a program by its content", gif, QByteArray(), spelled("MZ\x90"), QByteArray(), true);
        addRow("the last of all", "full.gif"_ba, QByteArray(), spelled(good), good, false);
        addRow("one too many", "more.gif"_ba, QByteArray(), spelled(good), QByteArray(), true);
    }
    void picturesAreKeptUnderTheirNames()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, held);
        QFETCH(const QByteArray, sent);
        QFETCH(const QByteArray, kept);
        Desk desk;
        desk.bounds.modPictures = name == "more.gif" ? 2 : 3; // two are the tracker's own
        const QByteArray file = "\\mods\\" + name;
        if (!held.isEmpty())
            desk.put(file, held);
        QVERIFY(desk.logIn());
        finishFiles();
        for (int time = 0; time < 2; ++time) {
            refreshWith(desk, reply({Sent{.picture = name, .bytes = sent}}));
            finishFiles();
            QCOMPARE(list(desk).rowCount(), 1);
            QCOMPARE(desk.bytesOf(file), kept);
            QCOMPARE(hasPicture(desk, 0, modColumn), !kept.isEmpty());
            QTEST(desk.boxes.boxes.size() == 1, "isTold");
        }
    }

    void heldPicturesAreNotAskedForAgain()
    {
        Desk desk;
        desk.put("\\mods\\readme.txt", "no picture");
        desk.put("\\mods\\a.webp", "RIFF....WEBP"); // which cannot be shown
        desk.put("\\mods\\b.ico", pictureOf({16, 16}));
        QVERIFY(desk.logIn());
        QCOMPARE(desk.lastRequest("GetProfiles"), "GetProfiles_admin_" + "b.ico"_ba.toBase64() + "_VB6_");
        finishFiles();
        QVERIFY(hasPicture(desk, 0, modColumn) && hasPicture(desk, 2, modColumn));
        list(desk).FormReload();
        QCOMPARE(desk.lastRequest("GetProfiles"),
                 "GetProfiles_admin_" + "b.ico|desert.gif|islands.gif"_ba.toBase64() + "_VB6_");
    }

    void howManyProfilesAreTaken_data()
    {
        addColumns<std::size_t, std::size_t>("rows", "folders");
        addRow("all", std::size_t{3}, std::size_t{3});
        addRow("a row less", std::size_t{2}, std::size_t{3});
        addRow("a folder less", std::size_t{3}, std::size_t{2});
    }
    void howManyProfilesAreTaken()
    {
        QFETCH(const std::size_t, rows);
        QFETCH(const std::size_t, folders);
        Desk desk;
        desk.bounds.listRows = rows;
        desk.bounds.profileFolders = folders;
        QVERIFY(desk.logIn());
        finishFiles();
        QCOMPARE(list(desk).rowCount(), static_cast<int>(rows));
        QCOMPARE(desk.control(u"lblProfilesCut"_s).isVisible(), rows < 3);
        QVERIFY(desk.exists("\\profiles\\2"));
        QCOMPARE(desk.exists("\\profiles\\3"), std::min(rows, folders) == 3);
    }

    void aStatusOutOfRangeHasNoPictureAndIsKept()
    {
        LoggedIn<Desk> desk;
        for (const int status : {-1, 0, 5, 6, std::numeric_limits<int>::max()}) {
            refreshWith(desk, reply({Sent{.status = QByteArray::number(status)}}));
            QCOMPARE(desk.core().selected.profile->status, status);
            QCOMPARE(hasPicture(desk, 0, statusColumn), status >= 0 && status <= 5);
        }
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aListThatArrivesLeavesTheUserHisChoice_data()
    {
        // isAskedFirst: before the user chooses
        addColumns<bool, bool, QByteArray, int>("isQuiet", "isAskedFirst", "gone", "id");
        addRow("quiet", true, false, ""_ba, 3);
        addRow("quiet, chosen meanwhile", true, true, ""_ba, 3);
        addRow("quiet, one above is gone", true, false, "Alpha"_ba, 3);
        addRow("quiet, the chosen one is gone", true, true, "Charlie"_ba, none);
        addRow("reload", false, false, ""_ba, 1);
        addRow("reload, chosen meanwhile", false, true, ""_ba, 3);
        addRow("reload, chosen meanwhile and gone", false, true, "Charlie"_ba, none);
    }
    void aListThatArrivesLeavesTheUserHisChoice()
    {
        QFETCH(const bool, isQuiet);
        QFETCH(const bool, isAskedFirst);
        QFETCH(const QByteArray, gone);
        LoggedIn<Desk> desk;
        desk.tracker.world().profiles.removeIf([&](const practice::Profile& profile) { return profile.name == gone; });
        if (!isAskedFirst)
            desk.clickRow(2);
        auto& clock = desk.control<QTimer>(u"tmrRefresh"_s);
        const auto ask = [&] { isQuiet ? clock.start(1) : askForList(desk); };
        const auto answer = [&] {
            clock.stop();
            if (isAskedFirst)
                desk.clickRow(2);
            letCome(desk);
        };
        QVERIFY(whenHeld(desk, "GetProfiles", ask, answer));
        QTEST(selectedId(desk), "id");
        QCOMPARE(desk.control(u"cmdModify"_s).isEnabled(), selectedId(desk) != none);
    }

    void theListFollowsTheTrackerAsOneLikes()
    {
        LoggedIn<Desk> desk;
        auto& clock = desk.control<QTimer>(u"tmrRefresh"_s);
        const auto intervalAt = [&](std::chrono::seconds pause) {
            desk.core().preferences.listRefresh = pause;
            const bool isShown = desk.answered("GetProfiles", [&] { askForList(desk); });
            return isShown && clock.isActive() ? clock.intervalAsDuration() : 0ms;
        };
        QVERIFY(intervalAt(30s) == 30s);
        QVERIFY(intervalAt(0s) == 0s);
        QVERIFY(intervalAt(5s) == 5s);
        desk.frame().showMinimized();
        QTRY_VERIFY(desk.frame().isMinimized());
        const qsizetype asked = desk.requestCount("GetProfiles");
        const QSignalSpy ticks(&clock, &QTimer::timeout);
        clock.start(1);
        QTRY_VERIFY(ticks.size() > 20);
        QCOMPARE(desk.requestCount("GetProfiles"), asked); // once a minute is enough
        desk.frame().showNormal();
        QVERIFY(desk.refreshQuietly());
    }

    void aQuietRefreshTouchesOnlyWhatHasChanged()
    {
        LoggedIn<Desk> desk(practice::World::many(80, 1));
        finishFiles();
        auto& view = desk.control<QTableView>(u"fgProfiles"_s);
        desk.clickRow(40);
        QTest::keyClick(&view, Qt::Key_Right);
        const int column = view.currentIndex().column();
        const int scrolled = view.verticalScrollBar()->value();
        const QSignalSpy resets(&desk.grid(), &QAbstractItemModel::modelReset);
        const QSignalSpy moves(&desk.grid(), &QAbstractItemModel::layoutChanged);
        const QSignalSpy changes(&desk.grid(), &QAbstractItemModel::dataChanged);
        const QSignalSpy progress(&desk.link(), &clsWinSock::progress);
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(changes.size() + moves.size(), 0);
        desk.tracker.world().profiles[41].gameType = "changed";
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(changes.size(), 1);
        QCOMPARE(desk.column(5).value(41), u"changed"_s);
        desk.tracker.world().profiles.move(0, 79);
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(view.currentIndex(), desk.grid().index(39, column));
        QCOMPARE(view.verticalScrollBar()->value(), scrolled);
        QCOMPARE(selectedId(desk), 41);
        QCOMPARE(resets.size() + progress.size(), 0);
    }

    void theSameDamageIsToldOnceUnlessTheUserAsks()
    {
        LoggedIn<Desk> desk;
        for (int time = 0; time < 3; ++time) {
            desk.tracker.answerNext("GetProfiles", Fault::garbageInElement(2));
            QVERIFY(desk.refreshQuietly());
            QTRY_COMPARE(desk.boxes.boxes.size(), 1);
        }
        desk.tracker.answerNext("GetProfiles", Fault::garbageInElement(2));
        list(desk).FormReload();
        QTRY_COMPARE(desk.boxes.boxes.size(), 2);
        QVERIFY(desk.refreshQuietly()); // a good one between
        desk.tracker.answerNext("GetProfiles", Fault::garbageInElement(2));
        QVERIFY(desk.refreshQuietly());
        QTRY_COMPARE(desk.boxes.boxes.size(), 3);
    }

    void manyClicksOnTheTabAskTwice()
    {
        LoggedIn<Desk> desk;
        const qsizetype asked = desk.requestCount("GetProfiles");
        const auto clickOn = [&] {
            for (int click = 0; click < 7; ++click) {
                askForList(desk);
                QCoreApplication::processEvents();
            }
            QCOMPARE(desk.requestCount("GetProfiles"), asked + 1);
            desk.tracker.releaseAll();
        };
        QVERIFY(whenHeld(
            desk, "GetProfiles", [&] { askForList(desk); }, clickOn));
        QTRY_COMPARE(desk.requestCount("GetProfiles"), asked + 2);
        QVERIFY(desk.settles());
        QVERIFY(desk.refreshQuietly());
        QCOMPARE(desk.requestCount("GetProfiles"), asked + 3);
    }

    void aDropEmptiesTheList()
    {
        LoggedIn<Desk> desk;
        openMenu(desk, 1);
        desk.tracker.resetLinks();
        QTRY_COMPARE(list(desk).rowCount(), 0);
        QVERIFY(!desk.control<QMenu>(u"mnuMain"_s).isVisible());
        QCOMPARE(selectedId(desk), none);
        QVERIFY(!desk.core().selected.hasProfiles);
        QVERIFY(!desk.control(u"cmdAttach"_s).isEnabled());
        const qsizetype asked = desk.requestCount("GetProfiles");
        list(desk).FormReload(); // logged out: asks nobody
        QCOMPARE(desk.requestCount("GetProfiles"), asked);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void theMenuOpensOnTheRowUnderTheMouse()
    {
        LoggedIn<Desk> desk;
        auto& menu = desk.control<QMenu>(u"mnuMain"_s);
        openMenu(desk, 1);
        QTRY_VERIFY(menu.isVisible());
        QCOMPARE(selectedId(desk), 2);
        QStringList entries;
        for (const QAction* entry : menu.actions())
            entries += entry->isSeparator() ? u"-"_s : entry->objectName();
        QCOMPARE(
            entries.join(u' '),
            u"mnuAttach mnuDetach - mnuStart mnuStop mnuMode - mnuModify mnuDelete - mnuPlayers mnuFileManager - mnuCopy"_s);
        desk.tracker.world().profiles.removeFirst();
        list(desk).FormReload();
        QVERIFY(menu.isVisible());
        QGuiApplication::clipboard()->clear();
        desk.control<QAction>(u"mnuCopyCell"_s).trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Bravo"_s); // where the menu was opened
        menu.close();
        auto* view = desk.control<QTableView>(u"fgProfiles"_s).viewport();
        const QPoint below(5, view->height() - 3);
        QContextMenuEvent event(QContextMenuEvent::Mouse, below, view->mapToGlobal(below));
        QApplication::sendEvent(view, &event);
        QVERIFY(!menu.isVisible());
    }
};

QTEST_MAIN(ProfilesListTest)
#include "ProfilesListTest.moc"
