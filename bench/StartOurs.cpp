// Starts as the client does and ends at its first paint: StartOurs FOLDER, the application folder. A folder that lacks
// shipped files gets them first.

#include "FirstPaint.h"
#include "app/CommandLine.h"
#include "app/Look.h"
#include "app/ShippedFiles.h"
#include "app/qrvrcMain.h"

#include <QLockFile>

int main(int argc, char** argv)
{
    constexpr int badUsage = 2;
    if (argc != 2) {
        std::fputs("usage: StartOurs FOLDER\n", stderr);
        return badUsage;
    }
    const std::filesystem::path folder = argv[1];
    const QApplication application(argc, argv);
    QLockFile instance(QFile::decodeName((folder / "instance.lock").c_str()));
    instance.setStaleLockTime(0);
    if (!instance.tryLock())
        return EXIT_FAILURE;
    fillAppFolder(AppFolder(folder), QRVRC_SHIPPED_DIR);
    applyLook();
    qrvrcMain frame(
        {.folder = folder, .makerHost = QUrl(QStringLiteral("http://maker.example")), .version = "3.0.1.0"});
    if (!frame.MDIFormLoad())
        return EXIT_FAILURE;
    const EndAtFirstPaint end(frame);
    frame.show();
    return QApplication::exec();
}
