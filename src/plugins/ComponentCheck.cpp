#include "plugins/ComponentCheck.h"

#include "client/Client.h"
#include "link/EventWait.h"
#include "plugins/ComponentEntries.h"
#include "store/AppFolder.h"

#include <QTimer>

#include <filesystem>

using namespace std::chrono_literals;

ComponentCheck::ComponentCheck(Client& client, ComponentServices services, ProblemFiles& problems)
    : m_client(client),
      m_services(std::move(services)),
      m_problems(problems)
{}

bool ComponentCheck::run(QWidget* parent)
{
    // Components find the libraries that they need there. One that does not will fail its test.
    std::error_code ignored;
    std::filesystem::current_path(m_client.folder.root(), ignored);

    const std::vector<std::string> entries =
        componentEntries(m_client.folder.fileNames("\\"), m_client.folder.fileNames("\\Plugins"));
    if (entries.empty())
        return true;
    qrvrcDllProgress window(m_client, m_services, m_problems, parent);
    window.setEntryCount(static_cast<int>(entries.size()));
    QTimer::singleShot(showsAfter, &window, &QWidget::show);
    if (!testAll(entries, window))
        return false;
    if (!window.hasProblems())
        return true;
    window.listProblems();
    return waitForSignal(&window, &QDialog::finished);
}

bool ComponentCheck::testAll(const std::vector<std::string>& entries, qrvrcDllProgress& window) const
{
    int number = 0;
    for (const std::string& entry : entries) {
        window.showTesting(++number, entry);
        if (const ComponentFault fault = faultOf(entry))
            window.addProblem(entry, *fault);
        else
            window.showAuthenticated(entry);
        if (!pauseFor(0ms))
            return false;
    }
    return true;
}

ComponentFault ComponentCheck::faultOf(const std::string& entry) const
{
    if (!isPlainFileName(componentFile(entry)))
        return "the file's name cannot be used on every system"; // it is not asked for by name either
    const std::string progId = componentClass(entry).progId;
    return progId.empty() ? std::nullopt : m_services.test(progId);
}
