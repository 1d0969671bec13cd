#include "live/statistics/StatisticsRows.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "support/AddRow.h"

using namespace std::string_literals;

namespace {

using Texts = std::vector<std::string>;

constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
constexpr int noKey = numberOf(ErrorNumber::InvalidProcedureCall);

std::string list(Texts records)
{
    for (std::string& record : records)
        record = base64::encode(record);
    return join(records, "|");
}

std::string entry(const std::string& key, const std::string& record)
{
    return base64::encode(key) + '_' + base64::encode(record);
}

/// A record whose field n is "n".
std::string counted(int fields)
{
    Texts texts;
    for (int field = 0; field < fields; ++field)
        texts.push_back(std::to_string(field));
    return join(texts, "_");
}

std::string body(const Texts& players, const std::string& statistics, const Texts& weapons = {})
{
    return list(players) + "[-][-]" + statistics + "[-][-]" + list(weapons);
}

const std::string ghost = base64::encode("Gh_o|st\xE9");
const std::string jointWeapon = counted(34) + '_' + ghost + '_' + base64::encode("Rifle_X");
const std::string deltaWeapon = ghost + "_Rifle_2_3725_4_5_6";

} // namespace

class PlayerStatisticsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatPrecedesAFaultStays_data()
    {
        addColumns<std::string, int, int, int>("body", "error", "players", "weapons");
        const std::string players = list({"a", "b"});
        const std::string one = entry("k", "1_2");
        addRow("whole", players + "[-][-]" + one + "[-][-]" + list({"w"}), 0, 2, 1);
        addRow("empty items", "||" + players + "|[-][-]|" + one + "[-][-]|", 0, 2, 0);
        addRow("empty sections", "[-][-][-][-]"s, 0, 0, 0);
        addRow("a fourth section", players + "[-][-][-][-][-][-]x", 0, 2, 0);
        addRow("one section", players, subscript, 2, 0);
        addRow("two sections", players + "[-][-]" + one, subscript, 2, 0);
        addRow("second player is no Base64", list({"a"}) + "|!!!![-][-][-][-]", mismatch, 1, 0);
        addRow("statistics without a record", players + "[-][-]YWFh[-][-]", subscript, 2, 0);
        addRow("second weapon is no Base64", players + "[-][-]" + one + "[-][-]" + list({"w"}) + "|****", mismatch, 2,
               1);
    }
    void whatPrecedesAFaultStays()
    {
        QFETCH(const std::string, body);
        PlayerStatistics statistics;
        QTEST(raisedBy([&] { statistics.read(body); }), "error");
        QTEST(static_cast<int>(statistics.players().size()), "players");
        QTEST(static_cast<int>(statistics.weapons().size()), "weapons");
    }

    void theNumberOfFieldsTellsTheFormOfAPlayer_data()
    {
        addColumns<GameFamily, std::string, std::string, int>("family", "player", "key", "error");
        const std::string key = "Gh_o|st\xE9_1_2_ID";
        const std::string longForm = ghost + "_1_2_" + base64::encode("ID") + "_0";
        using enum GameFamily;
        addRow("five fields", DeltaForce, longForm, key, 0);
        addRow("five fields, the other game", JointOperations, longForm, key, 0);
        addRow("four fields", DeltaForce, "1_2_" + ghost + "_0", "1_2_Gh_o|st\xE9"s, 0);
        addRow("four fields, the other game", JointOperations, "1_2_" + ghost + "_0", "1_2_" + ghost, 0);
        addRow("three fields", JointOperations, "1_2_" + ghost, "1_2_" + ghost, 0);
        addRow("two fields", DeltaForce, "1_2"s, "1_2_"s, subscript);
        addRow("one field", DeltaForce, "1"s, "1_"s, subscript);
        addRow("name is no Base64", DeltaForce, "1_2_!!!!"s, "1_2_"s, mismatch);
        addRow("unknown key", DeltaForce, longForm, key + "x", noKey);
        addRow("encoded key where it is not", DeltaForce, "1_2_" + ghost, "1_2_" + ghost, noKey);
    }
    void theNumberOfFieldsTellsTheFormOfAPlayer()
    {
        QFETCH(const GameFamily, family);
        QFETCH(const std::string, player);
        QFETCH(const std::string, key);
        QFETCH(const int, error);
        PlayerStatistics statistics;
        statistics.read(body({player}, entry(key, counted(40))));
        PlayerRow row;
        QCOMPARE(raisedBy([&] { row = playerRow(statistics, 0, family); }), error);
        if (error != 0)
            return;
        using Counts = std::array<std::string_view, PlayerRow::countColumns>;
        const Counts counts = family == GameFamily::DeltaForce
                                  ? Counts{"23", "2", "3", "13", "14", "15", "16", "9", "24"}
                                  : Counts{"0", "3", "5", "31", "14", "15", "30", "7", "22"};
        QVERIFY((row == PlayerRow{.slot = "1",
                                  .name = "Gh_o|st\xE9",
                                  .team = "2",
                                  .counts = counts,
                                  .seconds = family == GameFamily::DeltaForce ? 25 : 28}));
    }

    void statisticsAreFoundInAnyOrder()
    {
        PlayerStatistics statistics;
        const std::string record = counted(25) + '_';
        statistics.read(body({"1_2_QQ==", "3_4_Qg==", "5_6_Qw=="},
                             join({entry("5_6_C", record + "3"), entry("x", ""), entry("1_2_A", record + "1"),
                                   entry("3_4_B", record + "2")},
                                  "|")));
        for (std::int32_t index = 0; index < 3; ++index)
            QCOMPARE(playerRow(statistics, static_cast<std::size_t>(index), GameFamily::DeltaForce).seconds, index + 1);
    }

    void shortStatisticsRaise_data()
    {
        addColumns<GameFamily, std::string, int>("family", "record", "error");
        using enum GameFamily;
        addRow("all that is shown", DeltaForce, counted(26), 0);
        addRow("time is missing", DeltaForce, counted(25), subscript);
        addRow("time is no number", DeltaForce, counted(25) + "_x", mismatch);
        addRow("time is too long", DeltaForce, counted(25) + "_2147483648", numberOf(ErrorNumber::Overflow));
        addRow("joint, all that is shown", JointOperations, counted(32), 0);
        addRow("joint, double kills are missing", JointOperations, counted(31), subscript);
    }
    void shortStatisticsRaise()
    {
        QFETCH(const GameFamily, family);
        QFETCH(const std::string, record);
        PlayerStatistics statistics;
        const std::string key = family == GameFamily::DeltaForce ? "1_2_A" : "1_2_QQ==";
        statistics.read(body({"1_2_QQ=="}, entry(key, record)));
        QTEST(raisedBy([&] { playerRow(statistics, 0, family); }), "error");
    }

    void weaponsAreThoseOfOnePlayer_data()
    {
        // cells: none when it is another player's
        addColumns<GameFamily, std::string, std::string, int, Texts>("family", "record", "player", "error", "cells");
        const std::string name = "Gh_o|st\xE9";
        using enum GameFamily;
        const auto row = [](const char* tag, GameFamily family, const std::string& record, const std::string& player,
                            const Texts& cells) { addRow(tag, family, record, player, 0, cells); };
        row("prone", DeltaForce, deltaWeapon, name, {"Rifle", "Prone", "5", "4", "6", "3725"});
        row("standing", DeltaForce, ghost + "_Rifle_0_1_2_3_4", name, {"Rifle", "Stand", "3", "2", "4", "1"});
        row("crouching", DeltaForce, ghost + "_Rifle_1_1_2_3_4", name, {"Rifle", "Crouch", "3", "2", "4", "1"});
        row("in the air", DeltaForce, ghost + "_Rifle_3_1_2_3_4", name, {"Rifle", "Midair", "3", "2", "4", "1"});
        row("another stance", DeltaForce, ghost + "_Rifle_7_1_2_3_4_9", name, {"Rifle", "7", "3", "2", "4", "1"});
        row("no stance", DeltaForce, ghost + "_Rifle__1_2_3_4", name, {"Rifle", "", "3", "2", "4", "1"});
        row("another game", Other, deltaWeapon, name, {"Rifle", "Prone", "5", "4", "6", "3725"});
        row("joint", JointOperations, jointWeapon, name, {"Rifle_X", "N/A", "0", "3", "22", "28"});
        row("another player", DeltaForce, deltaWeapon, "gh_o|st\xE9", {});
        row("another player's short record", DeltaForce, ghost, "Raven", {});
        const auto fault = [](const char* tag, GameFamily family, const std::string& record, int error) {
            addRow(tag, family, record, "Gh_o|st\xE9"s, error, Texts());
        };
        fault("short record", DeltaForce, ghost + "_Rifle_2_3725_4_5", subscript);
        fault("time is no number", DeltaForce, ghost + "_Rifle_2__4_5_6", mismatch);
        fault("name is no Base64", DeltaForce, "!!!!_Rifle_2_3_4_5_6", mismatch);
        fault("joint, no player", JointOperations, counted(34), subscript);
        fault("joint, no weapon", JointOperations, counted(34) + '_' + ghost, subscript);
    }
    void weaponsAreThoseOfOnePlayer()
    {
        QFETCH(const GameFamily, family);
        QFETCH(const std::string, record);
        QFETCH(const std::string, player);
        QFETCH(const Texts, cells);
        PlayerStatistics statistics;
        statistics.read(body({}, {}, {counted(40), record}));
        std::optional<WeaponRow> row;
        QTEST(raisedBy([&] { row = weaponRow(statistics, 1, family, player); }), "error");
        Texts found;
        if (row) {
            QCOMPARE(row->position, std::size_t{2});
            for (const std::string_view cell :
                 {std::string_view(row->weapon), row->stance, row->shots, row->kills, row->experience})
                found.emplace_back(cell);
            found.push_back(std::to_string(row->seconds));
        }
        QVERIFY(found == cells);
    }

    void secondsReadAsTimes_data()
    {
        addColumns<int, std::string>("seconds", "text");
        addRow("none", 0, "00:00:00"s);
        addRow("below a minute", 59, "00:00:59"s);
        addRow("an hour, two minutes, five seconds", 3725, "01:02:05"s);
        addRow("whole hours only", 5400, "01:30:00"s);
        addRow("three digits of hours", 360'000, "100:00:00"s);
        addRow("negative", -1, "00:00:00"s);
        addRow("the longest", 2'147'483'647, "596523:14:07"s);
    }
    void secondsReadAsTimes()
    {
        QFETCH(const int, seconds);
        QTEST(timeText(seconds), "text");
    }

    void gamesAreToldApartByTheirVersion()
    {
        QVERIFY(familyOf("Delta Force,  V1.5.0.5") == GameFamily::DeltaForce);
        QVERIFY(familyOf("Delta Force, V1.5.0.5") == GameFamily::Other);
        QVERIFY(familyOf("The Joint Operations, V1") == GameFamily::JointOperations);
        QVERIFY(familyOf("") == GameFamily::Other);
    }
};

QTEST_APPLESS_MAIN(PlayerStatisticsTest)
#include "PlayerStatisticsTest.moc"
