#include "app/Look.h"
#include "app/ShippedFiles.h"
#include "app/qrvrcMain.h"
#include "base/RuntimeError.h"
#include "store/AppFolder.h"
#include "tour/Scenes.h"

#include <QApplication>
#include <QTemporaryDir>

#include <iostream>
#include <optional>
#include <string_view>
#include <vector>

namespace {

constexpr int badUsage = 2;

constexpr std::string_view help = "Usage: qrvrc-tour --pictures DIR\n"
                                  "Walks through all windows of the client and leaves a picture of each in DIR.\n";

QtMessageHandler showMessage = nullptr;

/// Off-screen there is much that windows cannot do, and Qt says so each time.
void withoutPlatformNoise(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!text.startsWith(QLatin1String("This plugin does not support")))
        showMessage(type, context, text);
}

int complain(const std::string& text, int status = EXIT_FAILURE)
{
    std::cerr << "qrvrc-tour: " << text << '\n';
    return status;
}

/// The folder that the arguments name; nothing when they do not make sense.
std::optional<std::string> pictureFolder(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 2 || arguments[0] != "--pictures" || arguments[1].empty())
        return {};
    return arguments[1];
}

std::filesystem::path pathOf(const QString& text)
{
    return std::filesystem::path(text.toStdU16String());
}

/// Fills `home` with what is shipped. @throws RuntimeError from the disk
std::filesystem::path settleIn(const QTemporaryDir& home)
{
    if (!home.isValid())
        throw RuntimeError(ErrorNumber::PermissionDenied, home.errorString().toStdString());
    std::filesystem::path folder = pathOf(home.path());
    fillAppFolder(AppFolder(folder), installationFolder(pathOf(QCoreApplication::applicationDirPath())));
    return folder;
}

using Scene = void (*)(tour::Act& act);
constexpr Scene scenes[] = {tour::firstDay, tour::plugins,    tour::editor,  tour::files,  tour::statistics,
                            tour::accounts, tour::helpCentre, tour::support, tour::updates};

/// Plays a scene on a frame and a folder of its own. @throws RuntimeError when the folder cannot be filled
int play(Scene scene, practice::WebSide& web, const QDir& pictures)
{
    const QTemporaryDir home;
    const std::filesystem::path folder = settleIn(home);
    qrvrcMain frame({.folder = folder,
                     .makerHost = web.base(),
                     .version = QRVRC_VERSION,
                     .program = folder / pathOf(tour::programName),
                     .probesComponents = false});
    tour::Act act({frame, web, QDir(home.path()), pictures});
    scene(act);
    return act.play() ? EXIT_SUCCESS : complain(act.complaint().toStdString());
}

int walk(const QDir& pictures)
{
    practice::WebSide web;
    if (!web.listen())
        return complain("no port for the web host");
    applyLook();
    try {
        for (const Scene scene : scenes) {
            if (const int status = play(scene, web, pictures); status != EXIT_SUCCESS)
                return status;
        }
        return EXIT_SUCCESS;
    } catch (const RuntimeError& error) {
        return complain("the application folder cannot be filled: " + error.description());
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments == std::vector<std::string>{"--help"}) {
        std::cout << help;
        return EXIT_SUCCESS;
    }
    const std::optional<std::string> folder = pictureFolder(arguments);
    if (!folder)
        return complain("the one option is --pictures DIR (see --help)", badUsage);

    showMessage = qInstallMessageHandler(withoutPlatformNoise);
    QCoreApplication::setApplicationName(QStringLiteral("qrvrc-tour"));
    const QApplication application(argc, argv);
    const QDir pictures(QString::fromLocal8Bit(folder->c_str()));
    if (!pictures.mkpath(QStringLiteral(".")))
        return complain("the folder '" + *folder + "' cannot be made");
    return walk(pictures);
}
