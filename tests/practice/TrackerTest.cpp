#include "practice/Tracker.h"
#include "Caller.h"
#include "practice/Framing.h"

#include <QTest>
#include <QtEndian>

using namespace practice;
using namespace Qt::StringLiterals;

namespace {

QByteArray expanded(const QByteArray& envelope)
{
    const QByteArray marker = "[-]Quorvane[-]";
    const qsizetype at = envelope.indexOf(marker);
    QByteArray length(4, '\0');
    qToBigEndian(envelope.left(at).toUInt(), length.data());
    return qUncompress(length + envelope.mid(at + marker.size()));
}

} // namespace

class TrackerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLoginIsAnsweredByItsAccount_data()
    {
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("password");
        QTest::addColumn<QByteArray>("privileges"); // how they begin; empty when the login fails
        QTest::newRow("super") << "admin"_ba
                               << "admin"_ba
                               << "Super"_ba;
        QTest::newRow("some") << "moderator"_ba
                              << "moderator"_ba
                              << "User|Profiles|Edit Profiles=0|Attach Profiles to Games=1|"_ba;
        QTest::newRow("none") << "guest"_ba
                              << "guest"_ba
                              << "User|Profiles|Edit Profiles=0|Attach Profiles to"_ba;
        QTest::newRow("underscores") << "a_b"_ba
                                     << "c_d"_ba
                                     << "User|"_ba;
        QTest::newRow("wrong password") << "admin"_ba
                                        << "guest"_ba << QByteArray();
        QTest::newRow("unknown") << "nobody"_ba
                                 << "x"_ba << QByteArray();
    }
    void aLoginIsAnsweredByItsAccount()
    {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, password);
        QFETCH(const QByteArray, privileges);
        Tracker tracker(World::small());
        tracker.world().accounts += Account{.name = "a_b", .password = "c_d"};
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        const QByteArray body = caller.login(user, password);
        if (privileges.isEmpty()) {
            QVERIFY(body.startsWith("Login Failed"));
            QVERIFY(caller.ask("GetStatus_" + user + "_VB6_").startsWith("Login Failed"));
            return;
        }
        const QList<QByteArray> fields = body.split('_');
        QCOMPARE(fields.size(), 5);
        QCOMPARE(fields[0], "Success"_ba);
        QVERIFY(QByteArray::fromBase64(fields[3]).startsWith(privileges));
        QCOMPARE(fields[4], "8000"_ba);
        QCOMPARE(tracker.world().account(user)->address, "127.0.0.1"_ba);
        caller.socket.abort();
        QTRY_COMPARE(tracker.links(), 0);
        QCOMPARE(tracker.world().account(user)->connections, 0);
    }

    void aFaultDoesWhatItsNameSays_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("closes");
        const QByteArray whole = "0000013[ST]a_b_c[ND]";
        QTest::newRow("none") << Fault::none() << whole << false;
        QTest::newRow("late") << Fault::late(std::chrono::milliseconds(1)) << whole << false;
        QTest::newRow("never") << Fault::never() << QByteArray() << false;
        QTest::newRow("twice") << Fault::twice() << whole + whole << false;
        QTest::newRow("cut off") << Fault::cutOffAfter(9) << "0000013[S"_ba << true;
        QTest::newRow("silent") << Fault::silentAfter(3) << "000"_ba << false;
        QTest::newRow("reset") << Fault::reset() << QByteArray() << true;
        QTest::newRow("element") << Fault::garbageInElement(1) << "0000019[ST]a_\x01!*\x7F%(~_c[ND]"_ba << false;
        QTest::newRow("element too far") << Fault::garbageInElement(3) << whole << false;
        QTest::newRow("wrong prefix") << Fault::wrongPrefix() << "length?[ST]a_b_c[ND]"_ba << false;
        QTest::newRow("huge prefix") << Fault::hugePrefix() << "9999999[ST]a_b_c[ND]"_ba << false;
        QTest::newRow("no markers") << Fault::noMarkers() << "0000013a_b_c"_ba << false;
        QTest::newRow("no end") << Fault::noEnd() << "0000013[ST]a_b_c"_ba << false;
        QTest::newRow("empty") << Fault::emptyBody() << "0000008[ST][ND]"_ba << false;
    }
    void aFaultDoesWhatItsNameSays()
    {
        QFETCH(const Fault, fault);
        QFETCH(const QByteArray, bytes);
        QFETCH(const bool, closes);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        QVERIFY(caller.login("admin", "admin").startsWith("Success_"));
        caller.received.clear();
        tracker.answerNext("GetStatus", fault);
        tracker.answerNextWith("GetStatus", "a_b_c");
        caller.write("GetStatus_admin_VB6_");
        QTRY_COMPARE(caller.received, bytes);
        QTRY_COMPARE(caller.closed(), closes);
        if (!closes) { // the fault was for one request only, and nothing of it follows
            caller.received.clear();
            caller.write("GetProfile_admin_VB6_99");
            QTRY_COMPARE(caller.received, "0000008[ST][ND]"_ba);
        }
    }

    void chunksArriveOneByOne()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        tracker.answerAll(Fault::chunks(9));
        QVERIFY(caller.login("admin", "admin").startsWith("Success_"));
        QVERIFY2(caller.arrivals.size() > 3, "the pieces came together");
    }

    void garbageDependsOnItsSeed()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        QList<QByteArray> bodies;
        for (const int seed : {7, 7, 8}) {
            tracker.answerNext("Login", Fault::garbage(seed));
            bodies += caller.login("admin", "admin");
        }
        QCOMPARE(bodies[0].size(), 64);
        QCOMPARE(bodies[0], bodies[1]);
        QVERIFY(bodies[0] != bodies[2]);
    }

    void anActionNeedsItsPrivilege_data()
    {
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("firstProcess"); // of profile 1 afterwards
        QTest::addColumn<int>("secondProcess");
        QTest::newRow("super attaches") << "admin"_ba
                                        << "Attach_admin_VB6_2_200"_ba
                                        << "True"_ba << 100 << 200;
        QTest::newRow("moderator attaches") << "moderator"_ba
                                            << "Attach_moderator_VB6_2_200"_ba
                                            << "True"_ba << 100 << 200;
        QTest::newRow("guest attaches") << "guest"_ba
                                        << "Attach_guest_VB6_2_200"_ba
                                        << "False"_ba << 100 << 0;
        QTest::newRow("process is taken") << "admin"_ba
                                          << "Attach_admin_VB6_2_100"_ba
                                          << "False"_ba << 100 << 0;
        QTest::newRow("no such process") << "admin"_ba
                                         << "Attach_admin_VB6_2_7"_ba
                                         << "False"_ba << 100 << 0;
        QTest::newRow("process 0") << "admin"_ba
                                   << "Attach_admin_VB6_2_0"_ba
                                   << "False"_ba << 100 << 0;
        QTest::newRow("moderator detaches") << "moderator"_ba
                                            << "Detach_moderator_VB6_1"_ba
                                            << "True"_ba << 0 << 0;
        QTest::newRow("guest detaches") << "guest"_ba
                                        << "Detach_guest_VB6_1"_ba
                                        << "False"_ba << 100 << 0;
        QTest::newRow("guest calls himself admin") << "guest"_ba
                                                   << "Detach_admin_VB6_1"_ba
                                                   << "False"_ba << 100 << 0;
        QTest::newRow("moderator stops") << "moderator"_ba
                                         << "StopGame_moderator_VB6_1"_ba
                                         << "False"_ba << 100 << 0;
        QTest::newRow("super stops") << "admin"_ba
                                     << "StopGame_admin_VB6_1"_ba
                                     << "True"_ba << 0 << 0;
    }
    void anActionNeedsItsPrivilege()
    {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, request);
        QFETCH(const QByteArray, reply);
        QFETCH(const int, firstProcess);
        QFETCH(const int, secondProcess);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login(user, user);
        QCOMPARE(caller.ask(request), reply);
        const Profile& first = *tracker.world().profile(1);
        QCOMPARE(first.process, firstProcess);
        QCOMPARE(first.isHosting(), firstProcess != 0);
        QCOMPARE(first.playersText().isEmpty(), firstProcess == 0);
        QCOMPARE(tracker.world().profile(2)->process, secondProcess);
        QCOMPARE(tracker.world().process(100) == nullptr, request.startsWith("StopGame") && reply == "True");
    }

    void profilesComeWithThePicturesThatTheClientLacks()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login("admin", "admin");
        const QByteArray held = "islands.gif|other.gif"_ba.toBase64();
        const QList<QByteArray> elements = caller.ask("GetProfiles_admin_" + held + "_VB6_").split('_');
        QCOMPARE(elements.size(), 5);
        QCOMPARE(QByteArray::fromBase64(elements[1]),
                 "1|Alpha|desert.gif|2/16|Q3JhY2tlZCBQYWxhY2U=|Coop|00:10:00|100|Hosting map|2|"
                 "Delta Force,  V1.5.0.5"_ba);
        QCOMPARE(QByteArray::fromBase64(elements[2]), "2|Bravo|||"
                                                      "|TDM||0|Not active|5|Delta Force,  V1.5.0.5"_ba);
        const QList<QByteArray> pictures = elements[4].split('|');
        QCOMPARE(pictures.size(), 3);
        QVERIFY(pictures[0].startsWith("71/73/70/") && pictures[0].endsWith("/59/"));
        QVERIFY(pictures[1].isEmpty() && pictures[2].isEmpty());
    }

    void anAccountIsAddedModifiedAndKicked()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller admin(tracker);
        admin.login("admin", "admin");
        const auto change = [&](const QByteArray& request, const QByteArray& names, const QByteArray& rows) {
            const QByteArray text = names.toBase64() + "[-]LgnPss|" + "pw"_ba.toBase64() + "||SelProfiles|[2]" + rows;
            return admin.ask(request + "_admin_VB6_2_" + text.toBase64());
        };
        QCOMPARE(change("AddProfileAdmin", "bob", "||Profiles|Profiles||Edit Profiles|1||Attach Profiles to Games|0"),
                 "True"_ba);
        Caller bob(tracker);
        QVERIFY(bob.login("bob", "pw").startsWith("Success_"));
        QCOMPARE(bob.ask("Attach_bob_VB6_2_200"), "False"_ba);
        QCOMPARE(change("ModifyProfileAdmin", "bobby|bob", "||Profiles|Profiles||Attach Profiles to Games|1"),
                 "True"_ba);
        QCOMPARE(bob.ask("Attach_bob_VB6_2_200"), "True"_ba); // the link goes on under the new name
        QCOMPARE(bob.ask("Detach_bob_VB6_1"), "False"_ba);    // not a profile of his

        const QByteArray list = expanded(admin.ask("GetProfileAdmins_admin_VB6_2"));
        QVERIFY(list.contains("bobby"_ba.toBase64() + '|' + "pw"_ba.toBase64() + "|127.0.0.1|Connected[-][-]"));
        const QByteArray rows = admin.ask("GetProfileAdminPrivis_admin_VB6_2_" + "bobby"_ba.toBase64());
        QVERIFY(rows.startsWith("Profiles\tProfiles||\tEdit Profiles0|\tAttach Profiles to Games1|"));

        QCOMPARE(admin.ask("KickProfileAdmin_admin_VB6_2_" + "bobby"_ba.toBase64()), "True"_ba);
        QTRY_VERIFY(bob.closed());
        QCOMPARE(tracker.links(), 1);
    }

    void settingsGoRoundAndFilesArriveWhole()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login("admin", "admin");
        QByteArray settings;
        for (const char* field :
             {"http://a.example:1|http://b.example:2", "me", "1", "2", "0", "1", "0", "7", "8", "X"})
            settings += (settings.isEmpty() ? "" : "_") + QByteArray(field).toBase64();
        QCOMPARE(caller.ask("SetProfile_admin_VB6_1_" + settings.toBase64()), "False"_ba); // attached to a game
        QCOMPARE(caller.ask("SetProfile_admin_VB6_2_" + settings.toBase64()), "True"_ba);
        const QList<QByteArray> elements = caller.ask("GetProfile_admin_VB6_2").split('_');
        QCOMPARE(elements.size(), 15);
        QCOMPARE(QByteArray::fromBase64(elements[2]), "http://a.example:1|http://b.example:2"_ba);
        QCOMPARE(QByteArray::fromBase64(elements[5]), "0"_ba); // ranks and leaning change places on the way back
        QCOMPARE(QByteArray::fromBase64(elements[6]), "2"_ba);

        QCOMPARE(expanded(caller.ask("GetFileList_admin_VB6_1|Backup Files|29/11/2009|29/11/2009")),
                 "backup-20091129.bma|Coop|29/11/2009|1 KB"_ba);
        const QByteArray path = "\\Backups\\Coop\\backup-20091129.bma";
        const QByteArray file = expanded(caller.ask("GetRemFile_admin_VB6_1|" + path.toBase64()));
        QVERIFY(file.startsWith(QByteArray("BMA1\0\1", 6)) && file.contains("Backup Files of Alpha, 29/11/2009\r\n"));
    }

    void newsReachWhoMayHearThemAndWaitsForNothing()
    {
        Tracker tracker(World::small());
        tracker.world().profiles[0].name = "A[ND]_lpha";
        QVERIFY(tracker.listen());
        Caller admin(tracker), guest(tracker), stranger(tracker), waiting(tracker), halfway(tracker);
        admin.login("admin", "admin");
        guest.login("guest", "guest");
        stranger.login("nobody", "x");
        for (Caller* caller : {&waiting, &halfway})
            caller->login("moderator", "moderator");
        tracker.answerNext("GetStatus", Fault::late(std::chrono::hours(1)));
        tracker.forgetRequests();
        waiting.write("GetStatus_moderator_VB6_");
        QTRY_COMPARE(tracker.requests().size(), 1);
        tracker.answerNext("GetStatus", Fault::silentAfter(20));
        halfway.received.clear();
        halfway.write("GetStatus_moderator_VB6_");
        QTRY_COMPARE(halfway.received.size(), 20);

        admin.received.clear();
        QCOMPARE(tracker.sendPluginNews(), 1);
        QTRY_VERIFY(admin.received.endsWith(")[ND]"));
        QVERIFY(admin.received.contains("[ST]Plugin_qrvWatch_A(ND)_lpha: "));
        QCOMPARE(admin.received.left(7).toInt() + 7, admin.received.size());
        QCOMPARE(halfway.ask("GetProfile_moderator_VB6_99"), ""_ba);
        QCOMPARE(tracker.sendPluginNews(), 2);
        tracker.world().removePlugin("Match Watch");
        QCOMPARE(tracker.sendPluginNews(), 0);
    }

    void newsComeEveryTenSecondsOfALivelyWorldOnly()
    {
        const QDateTime start(QDate(2009, 11, 29), QTime(20, 0));
        for (const bool lively : {true, false}) {
            Tracker tracker(lively ? World::lively(1, start) : World::small());
            QVERIFY(tracker.listen());
            Caller caller(tracker);
            caller.login("admin", "admin");
            caller.received.clear();
            tracker.setLively(true, std::chrono::milliseconds(1));
            QTRY_VERIFY(start.secsTo(tracker.world().clock) >= 35);
            tracker.setLively(false);
            const qint64 due = lively ? start.secsTo(tracker.world().clock) / 10 : 0;
            caller.write("GetProfile_admin_VB6_99");
            QTRY_VERIFY(caller.received.endsWith("0000008[ST][ND]")); // which comes behind the news
            QCOMPARE(caller.received.count("[ST]Plugin_qrvWatch_"), due);
        }
    }

    void aHostileClientIsBorneAndBounded()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.socket.write("noise[ND][ST][ND]x[ST]login_[ND][ST]Plugin_raw[ND][ST]_VB6_[ND]");
        QTRY_COMPARE(tracker.requests(), (QList<QByteArray>{"noise", "", "login_", "Plugin_raw", "_VB6_"}));
        QCOMPARE(tracker.links(), 1);
        caller.socket.write(QByteArray(RequestReader::maxPending + 1, 'x'));
        QTRY_VERIFY(caller.closed());
        QTRY_COMPARE(tracker.links(), 0);
    }
};

QTEST_GUILESS_MAIN(TrackerTest)
#include "TrackerTest.moc"
