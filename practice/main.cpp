#include "practice/Options.h"
#include "practice/links/Outage.h"
#include "practice/links/RecoveryTool.h"
#include "practice/links/SupportSide.h"
#include "practice/links/Tracker.h"
#include "practice/web/ScriptPages.h"
#include "practice/web/UpdatePages.h"
#include "practice/web/WebSide.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <QSocketNotifier>

#include <unistd.h>
#endif

using namespace practice;
using namespace Qt::StringLiterals;

namespace {

constexpr int exitBadUsage = 2;
constexpr std::chrono::milliseconds operatorThinks{1500};

#ifdef Q_OS_UNIX
int signalPipe[2] = {-1, -1}; // a signal handler may do little else than write to a descriptor

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}
#else
void onSignal(int)
{
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}
#endif

void quitOnSignals(QCoreApplication& app)
{
#ifdef Q_OS_UNIX
    if (::pipe(signalPipe) == 0) {
        auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &app);
        QObject::connect(notifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
    }
#else
    Q_UNUSED(app)
#endif
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

World worldFor(const Options& options)
{
    if (options.world == "lively")
        return World::lively(options.seed);
    if (options.world == "small")
        return World::small();
    return World::many(options.world.toInt(), 16, options.seed);
}

int complain(const QString& text)
{
    std::fprintf(stderr, "qrvrc-practice: %s\n", qPrintable(text));
    return exitBadUsage;
}

/// @return what is wrong; empty when everything asked for can be offered
QString offerUpdates(UpdatePages& pages, const Options& options)
{
    for (const UpdateChoice& choice : options.updates) {
        QFile file(choice.file);
        if (!file.open(QFile::ReadOnly))
            return u"the file \"%1\" cannot be read"_s.arg(choice.file);
        const bool isProgram = choice.name.toLower() == "qrvv3rc.exe";
        const OfferedFile offered{.name = choice.name,
                                  .folder = choice.folder,
                                  .type = isProgram         ? "executable file"
                                          : choice.isPlugin ? "Plugin"
                                                            : "data file",
                                  .description = isProgram ? "(QRV) Main Executable" : "Offered by the practice host",
                                  .version = choice.version,
                                  .body = file.readAll()};
        if (choice.isPlugin)
            pages.offerPluginFile(offered);
        else
            pages.offerClientFile(offered);
    }
    if (!options.newsFile.isEmpty()) {
        QFile news(options.newsFile);
        if (!news.open(QFile::ReadOnly))
            return u"the file \"%1\" cannot be read"_s.arg(options.newsFile);
        pages.setNews(news.readAll());
    }
    for (const PageMisbehaviour& misbehaviour : options.pageMisbehaviours)
        pages.misbehave(misbehaviour.page, misbehaviour.fault);
    return {};
}

int serve(QCoreApplication& app, const Options& options)
{
    Tracker tracker(worldFor(options));
    if (options.bigLog > 0)
        tracker.world().addBigLog(options.bigLog);
    for (const PluginChoice& choice : options.plugins) {
        if (choice.version)
            tracker.world().setPluginVersion(choice.name, *choice.version);
        else
            tracker.world().removePlugin(choice.name);
    }
    WebSide web;
    SupportSide support(options.seed);
    support.thinks = operatorThinks;
    RecoveryTool recovery(tracker);
    recovery.manner = options.recoveryManner;
    for (const Misbehaviour& misbehaviour : options.misbehaviours) {
        if (misbehaviour.request == "*")
            tracker.answerAll(misbehaviour.fault);
        else
            tracker.answerAlways(misbehaviour.request, misbehaviour.fault);
        support.answerAlways(misbehaviour.request, misbehaviour.fault);
    }
    const UpdateSigner signer;
    if (options.serial)
        web.updates().sign(signer, *options.serial);
    if (const QString fault = offerUpdates(web.updates(), options); !fault.isEmpty())
        return complain(fault);
    if (options.verbose) {
        QObject::connect(&tracker, &Tracker::requestReceived, &app, [](const QByteArray& name) {
            std::fprintf(stderr, "request %s\n", name.toPercentEncoding(" ").constData());
        });
        QObject::connect(&tracker, &Tracker::linksChanged, &app,
                         [](int links) { std::fprintf(stderr, "links %d\n", links); });
        QObject::connect(&support, &SupportSide::textReceived, &app, [](const QByteArray& text) {
            std::fprintf(stderr, "support %s\n", text.left(text.indexOf('_')).toPercentEncoding(" ").constData());
        });
        QObject::connect(&recovery, &RecoveryTool::commandReceived, &app, [](const QByteArray& verb) {
            std::fprintf(stderr, "recovery %s\n", verb.toPercentEncoding(" ").constData());
        });
        QObject::connect(&web, &WebSide::reportReceived, &app, [](const QByteArray& body) {
            std::fprintf(stderr, "report, %lld bytes\n", static_cast<long long>(body.size()));
        });
        QObject::connect(&web.scripts(), &ScriptPages::requested, &app,
                         [](const QByteArray& address) { std::fprintf(stderr, "script %s\n", address.constData()); });
        QObject::connect(&web.updates(), &UpdatePages::pageRequested, &app, [](const QByteArray& name) {
            std::fprintf(stderr, "page %s\n", name.toPercentEncoding(" /").constData());
        });
    }
    if (!tracker.listen(options.port) || !web.listen(options.webPort) || !support.listen(options.supportPort) ||
        !recovery.listen(options.recoveryPort)) {
        std::fprintf(stderr, "qrvrc-practice: port %d, %d, %d or %d of 127.0.0.1 cannot be had\n", options.port,
                     options.webPort, options.supportPort, options.recoveryPort);
        return EXIT_FAILURE;
    }
    tracker.world().supportPort = support.port();
    tracker.setLively(!options.still);
    support.setLively(!options.still);
    std::optional<Outage> outage;
    if (options.outage)
        outage.emplace(tracker, support, options.outage->every, options.outage->lasting, options.seed);
    if (outage && options.verbose) {
        QObject::connect(&*outage, &Outage::turned, &app,
                         [](bool isThere) { std::fprintf(stderr, "host %s\n", isThere ? "back" : "away"); });
    }
    const QByteArray webBase = web.base().toEncoded();
    std::printf("host link 127.0.0.1:%d\nweb %s\nscripts %s/stats\nsupport link 127.0.0.1:%d\n", tracker.port(),
                webBase.constData(), webBase.constData(), support.port());
    std::printf("recovery tool 127.0.0.1:%d\n", recovery.port());
    if (options.serial)
        std::printf("update key %s\n", signer.publicKey().constData());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qrvrc-practice"));
    quitOnSignals(app);

    const auto read = readOptions(QCoreApplication::arguments());
    if (const auto* error = std::get_if<UsageError>(&read))
        return complain(error->text);
    if (const auto* notice = std::get_if<Notice>(&read)) {
        std::printf("%s", qPrintable(notice->text));
        return EXIT_SUCCESS;
    }
    return serve(app, std::get<Options>(read));
}
