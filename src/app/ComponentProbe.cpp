#include "app/ComponentProbe.h"

#include "base/RuntimeError.h"
#include "link/EventWait.h"
#include "platform/system/PathBytes.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"

#include <QApplication>
#include <QProcess>

#include <cstdlib>

#if defined(Q_OS_UNIX)
#include <sys/resource.h>
#endif

using namespace Qt::StringLiterals;

namespace {

/// Unlike any status with which a component might end the process on its own.
constexpr int cameToItsEnd = 42;

} // namespace

Components::Probe childProcessProbe(const QString& program, const std::filesystem::path& applicationFolder,
                                    std::chrono::milliseconds limit)
{
    return [program, applicationFolder, limit](const std::filesystem::path& file, const std::string& progId,
                                               std::string& why) {
        QProcess child;
        child.setStandardInputFile(QProcess::nullDevice());
        child.setStandardOutputFile(QProcess::nullDevice());
        child.setStandardErrorFile(QProcess::nullDevice());
        EventWait wait(limit);
        wait.endsOn(&child, &QProcess::finished, WaitEnd::Done)
            .endsOn(&child, &QProcess::errorOccurred, WaitEnd::Broken);
        child.start(program, {u"--app-folder"_s, textOf(applicationFolder), u"--probe-component"_s, textOf(file),
                              u"--component-class"_s,
                              QString::fromLatin1(progId.data(), static_cast<qsizetype>(progId.size()))});
        const WaitEnd end = wait.run();
        if (child.state() != QProcess::NotRunning) {
            child.kill();
            if (end != WaitEnd::TimedOut)
                throw RuntimeError(ErrorNumber::CannotCreateObject,
                                   PrivateName(bytesOf(file), ": its try was broken off"));
            static_cast<void>(EventWait(limit).endsOn(&child, &QProcess::finished, WaitEnd::Done).run());
            why = "creating it takes too long";
            return false;
        }
        if (child.error() == QProcess::FailedToStart)
            throw RuntimeError(ErrorNumber::CannotCreateObject, PrivateName(bytesOf(file), ": it could not be tried"));
        if (child.exitStatus() == QProcess::NormalExit && child.exitCode() == cameToItsEnd)
            return true;
        why = "creating it ends the program";
        return false;
    };
}

int runComponentProbe(int argc, char** argv, const std::filesystem::path& applicationFolder,
                      const std::filesystem::path& file, const std::string& progId)
{
#if defined(Q_OS_UNIX)
    const rlimit noDump{0, 0};
    setrlimit(RLIMIT_CORE, &noDump);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // whatever window the component opens is nobody's business
#endif
    const QApplication application(argc, argv);
    tryComponent(AppFolder(applicationFolder), file, progId);
    std::_Exit(cameToItsEnd); // what goes wrong at the end of a process is not what was asked
}
