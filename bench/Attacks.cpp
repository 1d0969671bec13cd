// What a hostile host, list, book or folder can do to the program at its worst, one attack a run. Prints the longest
// stall of the window in milliseconds of processor time and the most memory that the process held in MiB.
//
//   Attacks NAME        without a name: the names

#include "Heartbeat.h"
#include "OffscreenApplication.h"
#include "QuietDesk.h"
#include "admins/AdminRecords.h"
#include "base/Base64.h"
#include "diagnostics/help/HelpBrowser.h"
#include "link/PackedReply.h"
#include "live/support/SupportDesk.h"
#include "live/support/SupportTexts.h"
#include "platform/system/FileBytes.h"
#include "practice/answers/Answers.h"
#include "practice/web/UpdatePages.h"
#include "practice/web/WebSide.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "store/ErrorLogBlock.h"
#include "ui/Grid.h"

#include <QAbstractButton>
#include <QBuffer>
#include <QComboBox>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>

#include <cstdio>
#include <cstdlib>
#include <map>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mebibyte = Bounds::mebibyte;
constexpr std::size_t chunkBytes = 64 * Bounds::kibibyte;

/// Boxes that close by themselves.
class ClosedBoxes : public MessageBoxes
{
public:
    void show(const QString&, const QString&) override {}
    bool confirm(const QString&, const QString&) override { return true; }
    void showTrapped(const QString&, const std::shared_ptr<TrappedError>&) override {}
};

std::string repeated(std::string_view text, std::size_t bytes)
{
    std::string all;
    all.reserve(bytes + text.size());
    while (all.size() < bytes)
        all += text;
    return all;
}

void runFor(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    runUntil([&] { return clock.hasExpired(milliseconds); });
}

/// An attack that does nothing shows nothing.
void demand(bool hasEffect, const char* effect)
{
    if (!hasEffect)
        qFatal("the attack has no effect: %s", effect);
}

/// What was needed to prepare the attack does not count.
void begin(Heartbeat& heart)
{
    QFile peak(u"/proc/self/clear_refs"_s);
    if (!peak.open(QFile::WriteOnly) || peak.write("5") != 1)
        qFatal("the memory cannot be measured");
    peak.close();
    heart.greatest();
}

/// The client, and what is done to it.
struct Victim
{
    explicit Victim(const QUrl& makerHost = QUrl(u"http://127.0.0.1:1"_s)) : desk(&boxes, makerHost) { runFor(200); }

    ClientCore& core() { return desk.frame->core(); }
    QWidget& open(const QString& window)
    {
        desk.frame->showWindow(window);
        return *core().windows.window(window);
    }
    void answer(const std::string& request, std::string body)
    {
        const auto owner = std::make_shared<const std::string>(std::move(body));
        core().replies.HandleData(*owner, owner, core().replies.handlerOf(request));
        runFor(100);
    }
    /// As a socket brings them: `piece` again and again, up to so many bytes.
    static void feed(Winsock& socket, const std::string& piece, std::size_t bytes = 1)
    {
        const std::string chunk = repeated(piece, std::min(bytes, chunkBytes));
        for (std::size_t fed = 0; fed < bytes; fed += chunk.size()) {
            Q_EMIT socket.dataArrival(chunk);
            QCoreApplication::processEvents();
        }
        runFor(500);
    }
    void click(QWidget& window, const QString& button)
    {
        window.findChild<QAbstractButton*>(button)->click();
        runFor(300);
    }

    ClosedBoxes boxes;
    QuietDesk desk;
};

std::string packed(const std::string& text)
{
    const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    return std::to_string(text.size()) + "[-]Quorvane[-]" + qCompress(bytes, 9).mid(4).toStdString();
}

void malformedMessages(Heartbeat& heart)
{
    Victim victim;
    const auto owner = std::make_shared<const std::string>("Plugin_%%%");
    begin(heart);
    for (int message = 0; message < 100'000; ++message) {
        victim.core().replies.HandleData(*owner, owner, ReplyDispatcher::nobody);
        if (message % 1000 == 0)
            QCoreApplication::processEvents();
    }
    victim.feed(victim.core().wsMain, "0000020[ST]Plugin_%%%[ND]", 16 * mebibyte);
}

void hugeReply(Heartbeat& heart)
{
    Victim victim;
    begin(heart);
    victim.feed(victim.core().wsMain, "26738688[ST]");
    victim.feed(victim.core().wsMain, "x", 255 * mebibyte);
    victim.feed(victim.core().wsMain, "[ND]");
}

/// The window lets another thread do this, so what it holds up is nobody; what it takes is the same.
void manyAccounts(Heartbeat& heart)
{
    std::string accounts;
    for (int number = 0; accounts.size() < 67 * mebibyte; ++number)
        accounts += base64::encode("a" + std::to_string(number)) + "|cHc=|1.2.3.4|Offline[-]";
    const std::string body = packed(accounts);
    begin(heart);
    const AdminList list = readAdmins(splitPackedReply(body), Bounds());
    demand(list.accounts.size() == Bounds().listRows && list.areAccountsCut, "accounts are read");
}

practice::World worldOf(int profiles, int pictures)
{
    practice::World world = practice::World::many(profiles, 1);
    for (int number = 0; number < pictures; ++number) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QBuffer::WriteOnly);
        QImage(64, 64, QImage::Format_RGB32).save(&buffer, "PNG");
        const QByteArray name = "mod" + QByteArray::number(number) + ".gif";
        world.pictures.insert(name, bytes);
        world.profiles[number % profiles].modPicture = name;
    }
    return world;
}

void listed(Heartbeat& heart, practice::World world)
{
    Victim victim;
    const QWidget& list = victim.open(u"qrvrcProfilesList"_s);
    const practice::Account who = *world.account("admin");
    const std::string body = practice::answerRequest(world, who, {"GetProfiles", "admin_", {}}).body.toStdString();
    world = {};
    begin(heart);
    for (int time = 0; time < 3; ++time) {
        victim.answer("GetProfiles", body);
        runFor(2000);
    }
    demand(list.findChild<GridView*>()->rows().rowCount() > 1000, "profiles are shown");
}

void helpPages(Heartbeat& heart)
{
    static const std::map<std::string, std::string> pages{
        {"/words", repeated("word and more ", mebibyte)},
        {"/lines", "<pre>" + repeated("a\n", mebibyte)},
        {"/long", repeated("x", mebibyte)},
        {"/tables", repeated("<table><tr><td>", mebibyte)},
        {"/nested", repeated("<table><tr><td>", 8 * 15) + repeated("word ", mebibyte / 2)},
        {"/cells", "<table>" + repeated("<tr><td>a<td>b", 4900 * 14)},
        {"/tags", repeated("<b>a</b> ", 9 * 9'900)},
        {"/deep", repeated("<div>", 5 * 2'000)},
        {"/deeper", repeated("<div>", mebibyte)},
        {"/pictures", repeated("<img src=a> ", mebibyte)},
        {"/styles",
         "<style>" + repeated("p.c{color:red}", 200 * 14) + "</style>" + repeated("<p class=c>", 19'000 * 11)},
    };
    HelpBrowser browser([](const std::string& name) -> std::optional<std::string> {
        const auto found = pages.find(name);
        return found == pages.end() ? std::nullopt : std::optional(found->second);
    });
    browser.resize(700, 600);
    browser.show();
    begin(heart);
    for (const auto& [name, page] : pages) {
        Heartbeat ofPage;
        browser.setSource(bookUrl(QString::fromStdString(name)), QTextDocument::HtmlResource);
        browser.mark({u"a"_s, u"word"_s});
        runFor(300);
        browser.resize(browser.width() == 700 ? 500 : 700, 600);
        runFor(200);
        std::fprintf(stderr, "%s: %.0f ms\n", name.c_str(), ofPage.greatest().busy);
    }
}

void largeLog(Heartbeat& heart)
{
    const AppFolder folder(QuietDesk::folder());
    ErrorLogBlock block;
    block.number = "13";
    block.description = "a fault";
    block.system = "x";
    writeBytes(folder.path("\\ErrorLog.txt"), repeated(formatErrorLogBlock(block), 20 * mebibyte));
    Victim victim;
    QWidget& centre = victim.open(u"qrvrcHelp"_s);
    begin(heart);
    victim.click(centre, u"cmdViewErrors"_s);
    runFor(3000);
    demand(centre.findChild<TextPane*>(u"txtErrLog"_s)->text()->size() > 8 * mebibyte, "the log is shown");
    victim.click(centre, u"cmdShowReport"_s);
    victim.click(centre, u"cmdClearErrors"_s);
}

void conversation(Heartbeat& heart, const std::string& message, std::size_t bytes)
{
    Victim victim;
    victim.desk.frame->supportDesk().open();
    runFor(300);
    const std::string text = "Message_" + base64::encode(conversationEntry("Host", message));
    begin(heart);
    victim.feed(victim.core().wSupport, text, bytes);
    demand(victim.desk.frame->supportDesk().talk()->conversation.first() > 0, "messages go");
    QWidget& console = *victim.core().windows.window(u"qrvrcSupport"_s);
    console.findChild<QLineEdit*>(u"txtFilter"_s)->setText(u"a"_s);
    victim.click(console, u"cmdFilter"_s);
    console.findChild<QLineEdit*>(u"txtFilter"_s)->clear();
    victim.click(console, u"cmdFilter"_s);
    console.findChild<QLineEdit*>(u"txtSearch"_s)->setText(u"ays"_s);
    victim.click(console, u"cmdSearch"_s);
    console.close();
    runFor(200);
    victim.desk.frame->supportDesk().open();
    runFor(500);
}

void manyConnections(Heartbeat& heart)
{
    const AppFolder folder(QuietDesk::folder());
    std::string ini;
    for (int number = 0; number < 20'000; ++number)
        ini += "[Host " + std::to_string(number) + "]\r\nHost=h\r\nPort=4000\r\nUser=u\r\nPass=p\r\n";
    writeBytes(folder.path("\\profiles.ini"), ini);
    begin(heart);
    Victim victim;
    QWidget& login = victim.open(u"qrvrcLogin"_s);
    auto* profiles = login.findChild<QComboBox*>(u"cboProfile"_s);
    demand(profiles->count() > 20'000, "profiles are listed");
    profiles->showPopup();
    runFor(200);
    profiles->hidePopup();
    profiles->setCurrentIndex(profiles->count() - 1);
    runFor(300);
}

void longUpdateList(Heartbeat& heart)
{
    practice::WebSide web;
    if (!web.listen())
        qFatal("no port can be had");
    QList<practice::OfferedFile> files{{.name = "qrvv3rc.exe", .folder = "\\", .version = "9"}};
    for (int number = 1; number < 20'000; ++number)
        files += practice::OfferedFile{.name = "f" + QByteArray::number(number), .folder = "\\", .version = "9"};
    web.updates().setPage("qrvv3rc_filelist.txt", practice::UpdatePages::listOf(files));
    const AppFolder folder(QuietDesk::folder());
    folder.makeFolder("\\settings");
    writeBytes(folder.path("\\settings\\config.ini"), "[Settings]\r\nCheckForUpdates=0\r\n"); // the built-in location
    Victim victim(web.base());
    QWidget& update = victim.open(u"qrvrcUpdate"_s);
    begin(heart);
    victim.click(update, u"cmdUpdateQRV"_s);
    runFor(20000);
    const auto grids = update.findChildren<GridView*>();
    demand(
        std::any_of(grids.begin(), grids.end(), [](const GridView* grid) { return grid->rows().rowCount() > 10'000; }),
        "files are shown");
}

struct Attack
{
    const char* name;
    void (*play)(Heartbeat& heart);
};

constexpr Attack attacks[]{
    {"malformed-messages", malformedMessages},
    {"huge-reply", hugeReply},
    {"accounts", manyAccounts},
    {"mod-pictures", [](Heartbeat& heart) { listed(heart, worldOf(2'000, 2'000)); }},
    {"profile-folders", [](Heartbeat& heart) { listed(heart, worldOf(12'000, 0)); }},
    {"help-pages", helpPages},
    {"error-log", largeLog},
    {"short-messages", [](Heartbeat& heart) { conversation(heart, "a", 64 * mebibyte); }},
    {"long-messages",
     [](Heartbeat& heart) { conversation(heart, repeated("said and done ", 180 * Bounds::kibibyte), 24 * mebibyte); }},
    {"many-lines",
     [](Heartbeat& heart) { conversation(heart, std::string(180 * Bounds::kibibyte, '\n'), 24 * mebibyte); }},
    {"connections", manyConnections},
    {"update-list", longUpdateList},
};

} // namespace

int main(int argc, char** argv)
{
    const OffscreenApplication application(argc, argv);
    for (const Attack& attack : attacks) {
        if (argc < 2) {
            std::puts(attack.name);
        } else if (std::string_view(argv[1]) == attack.name) {
            Heartbeat heart;
            attack.play(heart);
            std::printf("%.0f %.0f\n", heart.greatest().busy, mebibytesOf("VmHWM"));
            return EXIT_SUCCESS;
        }
    }
    return argc < 2 ? EXIT_SUCCESS : EXIT_FAILURE;
}
