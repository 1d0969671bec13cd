#include "app/ComponentProbe.h"

#include "base/Text.h"
#include "platform/system/PathBytes.h"
#include "platform/system/PathText.h"
#include "plugins/AwaitComponent.h"
#include "plugins/ComponentEntries.h"
#include "plugins/PluginData.h"
#include "store/AppFolder.h"

#include <QApplication>
#include <QProcess>
#include <QTimer>

#include <cstdlib>
#include <memory>
#include <utility>

#if defined(Q_OS_UNIX)
#include <sys/resource.h>
#endif

using namespace Qt::StringLiterals;

namespace {

/// Unlike any status with which a component might end the process on its own.
constexpr int cameToItsEnd = 42;

/// One trial. Deletes itself when it has answered; deleted before, it ends its process and says nothing.
class ProbeProcess : public QObject
{
public:
    using Verdict = Components::Verdict;
    using Done = std::function<void(const Verdict&)>;

    ProbeProcess(std::string what, std::chrono::milliseconds limit, Done done, QObject* parent)
        : QObject(parent),
          m_what(std::move(what)),
          m_limit(limit),
          m_done(std::move(done))
    {
        m_child.setStandardInputFile(QProcess::nullDevice());
        m_child.setStandardOutputFile(QProcess::nullDevice());
        m_child.setStandardErrorFile(QProcess::nullDevice());
        // Behind the process's own doings, which its deletion must not disturb.
        connect(
            &m_child, &QProcess::finished, this, [this] { conclude(); }, Qt::QueuedConnection);
        connect(
            &m_child, &QProcess::errorOccurred, this,
            [this](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart)
                    answer({Verdict::How::NotMade, "it could not be tried"});
            },
            Qt::QueuedConnection);
        connect(&m_clock, &QTimer::timeout, this, [this] {
            m_isTooLate = true;
            m_child.kill();
        });
        m_clock.setSingleShot(true);
    }
    ProbeProcess(const ProbeProcess&) = delete;
    ProbeProcess& operator=(const ProbeProcess&) = delete;
    ~ProbeProcess() override
    {
        m_child.disconnect(this);
        m_child.kill();
        m_child.waitForFinished();
    }

    void start(const QString& program, const QStringList& arguments)
    {
        m_clock.start(m_limit);
        m_child.start(program, arguments);
    }

private:
    void conclude()
    {
        if (m_isTooLate)
            answer({Verdict::How::Failed, m_what + " takes too long"});
        else if (m_child.exitStatus() == QProcess::NormalExit && m_child.exitCode() == cameToItsEnd)
            answer({});
        else
            answer({Verdict::How::Failed, m_what + " ends the program"});
    }

    void answer(const Verdict& verdict)
    {
        deleteLater();
        std::exchange(m_done, [](const Verdict&) {})(verdict);
    }

    QProcess m_child;
    QTimer m_clock;
    std::string m_what;
    std::chrono::milliseconds m_limit;
    Done m_done;
    bool m_isTooLate = false;
};

/// Whatever window a component opens is nobody's business, nor what the toolkit has to say of there being no screen.
/// Before there is an application.
void keepWindowsOffScreen()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
#if defined(Q_OS_UNIX)
    qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
}

} // namespace

Components::Probe childProcessProbe(const QString& program, const std::filesystem::path& applicationFolder,
                                    std::chrono::milliseconds limit)
{
    return [program, applicationFolder, limit, trials = std::make_shared<QObject>()](
               const std::filesystem::path& file, const std::string& progId, ProbeProcess::Done done) {
        const std::string what = progId.empty() ? "registering it" : "creating it, or reading its GetData,";
        auto* trial = new ProbeProcess(what, limit, std::move(done), trials.get());
        trial->start(program, {u"--app-folder"_s, textOf(applicationFolder), u"--probe-component"_s, textOf(file),
                               u"--component-class"_s,
                               QString::fromLatin1(progId.data(), static_cast<qsizetype>(progId.size()))});
    };
}

int runComponentProbe(int argc, char** argv, const std::filesystem::path& applicationFolder,
                      const std::filesystem::path& file, const std::string& progId)
{
#if defined(Q_OS_UNIX)
    const rlimit noDump{0, 0};
    setrlimit(RLIMIT_CORE, &noDump);
#endif
    keepWindowsOffScreen();
    const QApplication application(argc, argv);
    const bool isPlugin = lowerAscii(progId).ends_with(".clsplugin");
    tryComponent(AppFolder(applicationFolder), file, progId, [isPlugin](ComponentObject& object) {
        if (isPlugin)
            readPluginData(object);
    });
    std::_Exit(cameToItsEnd); // what goes wrong at the end of a process is not what was asked
}

ComponentFault registerComponent(int argc, char** argv, const std::filesystem::path& applicationFolder,
                                 const std::filesystem::path& file)
{
    keepWindowsOffScreen();
    const QApplication application(argc, argv);
    const AppFolder folder(applicationFolder);
    Components components(folder);
    components.setProbe(childProcessProbe(QCoreApplication::applicationFilePath(), folder.root()));
    if (const ComponentFault fault =
            awaitComponent([&](const Components::Done& done) { components.registerFile(file, done); }))
        return fault;
    const std::string name = bytesOf(file.filename());
    const bool isPlugin = lowerAscii(bytesOf(file.parent_path().filename())) == "plugins";
    const std::string progId = componentClass(isPlugin ? "\\Plugins\\" + name : name).progId;
    if (progId.empty())
        return std::nullopt;
    if (const ComponentFault fault =
            awaitComponent([&](const Components::Done& done) { components.tryClass(progId, done); }))
        return fault;
    // The trial passes what ends in good order, as an error of the plugin does.
    return faultIn([&] {
        const ObjectRef object = components.createObject(progId);
        if (isPlugin)
            readPluginData(*object);
    });
}
