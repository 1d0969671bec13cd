#include "app/Look.h"
#include "app/ShippedFiles.h"
#include "app/qrvrcMain.h"
#include "base/RuntimeError.h"
#include "store/AppFolder.h"
#include "tour/Tour.h"

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

int walk(const QDir& pictures)
{
    const QTemporaryDir home;
    if (!home.isValid())
        return complain("no temporary folder: " + home.errorString().toStdString());
    const std::filesystem::path folder = pathOf(home.path());
    try {
        fillAppFolder(AppFolder(folder), installationFolder(pathOf(QCoreApplication::applicationDirPath())));
    } catch (const RuntimeError& error) {
        return complain("the application folder cannot be filled: " + error.description());
    }
    practice::WebSide web;
    if (!web.listen())
        return complain("no port for the web host");

    applyLook();
    qrvrcMain frame({.folder = folder, .makerHost = web.base(), .version = QRVRC_VERSION});
    if (!frame.MDIFormLoad())
        return complain("the start gave way to an updater");
    tour::Tour tour(frame, web, pictures);
    if (!tour.start())
        return complain("no port for the host link");
    QApplication::exec();
    return tour.isThrough() ? EXIT_SUCCESS : complain(tour.complaint().toStdString());
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
