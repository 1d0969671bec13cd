#include "app/CommandLine.h"
#include "app/ComponentProbe.h"
#include "app/Leftovers.h"
#include "app/Look.h"
#include "app/ShippedFiles.h"
#include "app/qrvrcMain.h"
#include "base/RuntimeError.h"
#include "platform/net/Inet.h"
#include "platform/system/PathBytes.h"
#include "platform/system/PathText.h"
#include "platform/system/StandardStreams.h"
#include "updates/UpdateOptions.h"

#include <QApplication>
#include <QFile>
#include <QLockFile>
#include <QStandardPaths>
#include <QTimer>

#include <iostream>

using namespace Qt::StringLiterals;

namespace {

constexpr int badUsage = 2;

/// The last net: an exception that no trap caught is reported as an error of the program instead of ending it.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    Reporter* reporter = nullptr;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (!reporter)
            return QApplication::notify(receiver, event);
        bool result = false;
        reporter->trap("QRVRC", [&] { result = QApplication::notify(receiver, event); });
        return result;
    }
};

int complain(const std::string& text)
{
    tellCaller("qrvv3rc: " + text);
    return badUsage;
}

int reportRegistration(const std::filesystem::path& file, const ComponentFault& fault)
{
    if (!fault)
        return 0;
    tellCaller("qrvv3rc: '" + bytesOf(file) + "' cannot be used: " + *fault);
    return 1;
}

/// The same arguments for a start in another current folder.
std::vector<std::string> restartArguments(const CommandLine& line, const std::filesystem::path& folder)
{
    std::vector<std::string> arguments;
    if (line.appFolder)
        arguments.insert(arguments.end(), {"--app-folder", std::filesystem::absolute(folder).string()});
    if (line.connectProfile)
        arguments.insert(arguments.end(), {"--connect", line.connectProfile->toLocal8Bit().toStdString()});
    if (line.makerHost)
        arguments.insert(arguments.end(), {"--maker-host", line.makerHost->toLocal8Bit().toStdString()});
    return arguments;
}

QUrl makerHostFor(const CommandLine& line, const std::filesystem::path& folder)
{
    const QUrl chosen(line.makerHost ? *line.makerHost : QString::fromStdString(storedMakerHost(AppFolder(folder))));
    return isWebAddress(chosen) ? chosen : QUrl(QString::fromLatin1(QRVRC_MAKER_HOST));
}

int run(Application& application, const CommandLine& line)
{
    const std::filesystem::path executable = pathOf(QCoreApplication::applicationDirPath());
    const std::filesystem::path userFolder =
        pathOf(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    const std::filesystem::path folder =
        line.appFolder ? pathOf(*line.appFolder) : chooseAppFolder(executable, userFolder);
    std::error_code fault;
    std::filesystem::create_directories(folder, fault);
    QLockFile instance(textOf(folder / "instance.lock"));
    instance.setStaleLockTime(0); // stale when its process is gone, however long ago it was made
    if (!instance.tryLock()) {
        if (instance.error() == QLockFile::LockFailedError)
            return 0; // another instance uses the folder
        return complain("the folder '" + bytesOf(folder) + "' cannot be written to");
    }
    sweepLeftovers(folder);
    try {
        fillAppFolder(AppFolder(folder), installationFolder(executable));
    } catch (const RuntimeError& error) {
        return complain("the folder '" + bytesOf(folder) + "' cannot be filled: " + error.description());
    }

    applyLook();
    qrvrcMain frame({.folder = folder,
                     .makerHost = makerHostFor(line, folder),
                     .version = QRVRC_VERSION,
                     .program = pathOf(QCoreApplication::applicationFilePath()),
                     .arguments = restartArguments(line, folder),
                     .updateKey = QRVRC_UPDATE_KEY});
    application.reporter = &frame.core().reporter;
    if (!frame.MDIFormLoad())
        return 0;
    frame.show();
    if (line.connectProfile) {
        QTimer::singleShot(0, &frame, [&] { frame.connectProfile(*line.connectProfile); });
    }
    const int status = QApplication::exec();
    application.reporter = nullptr;
    return status;
}

int start(int argc, char** argv)
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments += QFile::decodeName(argv[index]);
    const CommandLine line = parseCommandLine(arguments);
    switch (line.wish) {
    case CommandLine::Wish::Complain:
        return complain(line.complaint.toLocal8Bit().toStdString());
    case CommandLine::Wish::ShowVersion:
        std::cout << "qrvv3rc " QRVRC_VERSION "\n";
        return 0;
    case CommandLine::Wish::ShowHelp:
        std::cout << commandLineHelp();
        return 0;
    case CommandLine::Wish::ProbeComponent:
        return runComponentProbe(argc, argv, pathOf(line.appFolder.value_or(u"."_s)), pathOf(line.componentFile),
                                 line.componentClass.toStdString());
    case CommandLine::Wish::RegisterComponent:
        return reportRegistration(pathOf(line.componentFile),
                                  registerComponent(argc, argv, pathOf(line.appFolder.value_or(u"."_s)),
                                                    std::filesystem::absolute(pathOf(line.componentFile))));
    case CommandLine::Wish::Run:
        break;
    }
    if (line.makerHost && !isWebAddress(QUrl(*line.makerHost)))
        return complain("'" + line.makerHost->toLocal8Bit().toStdString() + "' is no http or https address");

    QCoreApplication::setApplicationName(QStringLiteral("qrvv3rc"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QRVRC_VERSION));
    Application application(argc, argv);
    return run(application, line);
}

} // namespace

int main(int argc, char** argv)
{
    joinCallersConsole();
    try {
        return start(argc, argv);
    } catch (const std::exception& fault) {
        tellCaller(std::string("qrvv3rc: ") + fault.what());
        return 1;
    }
}
