#include "app/CommandLine.h"
#include "app/ComponentProbe.h"
#include "app/Instance.h"
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
#include <QMessageBox>
#include <QStandardPaths>
#include <QThreadPool>
#include <QTimer>

#include <iostream>

using namespace Qt::StringLiterals;

namespace {

constexpr int badUsage = 2;

// Who publishes this program reads its version from the file.
[[gnu::used]] constexpr char fileVersionMark[] = "QRVRC-FILE-VERSION:" QRVRC_VERSION;

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

/// Says it in a window too: who starts the program from a menu sees no standard error.
void tellInWindow(const QString& text)
{
    std::cerr << "qrvv3rc: " + text.toLocal8Bit().toStdString() + '\n';
    QMessageBox box(QMessageBox::NoIcon, u"QRVRC"_s, text);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

int giveUp(const QString& text)
{
    tellInWindow(text);
    return badUsage;
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

/// Without all of its pictures the program is plain and works, so this keeps nobody from it.
void fill(const AppFolder& folder, const std::filesystem::path& installation)
{
    try {
        fillAppFolder(folder, installation);
        if (!holdsPictures(folder.root()))
            tellInWindow(u"The program's pictures and manual are missing: they are neither in '%1' nor in '%2'."_s.arg(
                textOf(folder.root()), textOf(installation)));
    } catch (const RuntimeError& error) {
        tellInWindow(u"The folder '%1' cannot be filled with pictures and manual: %2"_s.arg(
            textOf(folder.root()), QString::fromLocal8Bit(error.description().c_str())));
    }
}

int run(Application& application, const CommandLine& line)
{
    const std::filesystem::path executable = pathOf(QCoreApplication::applicationDirPath());
    const std::filesystem::path userFolder =
        pathOf(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    // Absolute, because what opens files later may have changed the current folder.
    const std::filesystem::path folder =
        std::filesystem::absolute(line.appFolder ? pathOf(*line.appFolder) : chooseAppFolder(executable, userFolder));
    applyLook();
    std::error_code fault;
    std::filesystem::create_directories(folder, fault);
    Instance instance(folder);
    switch (instance.begin()) {
    case Instance::Start::First:
        break;
    case Instance::Start::Raised:
        return 0;
    case Instance::Start::Silent:
        return giveUp(u"The folder '%1' is in use by a program that does not answer."_s.arg(textOf(folder)));
    case Instance::Start::Updating:
        return giveUp(
            u"An update is being installed in the folder '%1'. The program starts again when that is done."_s.arg(
                textOf(folder)));
    case Instance::Start::Unusable:
        return giveUp(u"The folder '%1' cannot be written to: %2"_s.arg(
            textOf(folder), QString::fromLocal8Bit(instance.fault().message().c_str())));
    }
    sweepLeftovers(folder);
    fill(AppFolder(folder), installationFolder(executable));

    qrvrcMain frame({.folder = folder,
                     .makerHost = makerHostFor(line, folder),
                     .version = QRVRC_VERSION,
                     .program = pathOf(QCoreApplication::applicationFilePath()),
                     .arguments = restartArguments(line, folder),
                     .updateKey = QRVRC_UPDATE_KEY,
                     .isPackaged = QRVRC_PACKAGED != 0,
                     .licences = installationFolder(executable) / "Licences",
                     .keyring = systemKeyring()});
    application.reporter = &frame.core().reporter;
    instance.show(frame);
    if (!frame.MDIFormLoad())
        return 0;
    frame.show();
    if (line.connectProfile) {
        QTimer::singleShot(0, &frame, [&] { frame.connectProfile(*line.connectProfile); });
    }
    const int status = QApplication::exec();
    QThreadPool::globalInstance()->waitForDone(); // what was left to it works on the folder, which is held until then
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
