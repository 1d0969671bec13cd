#include "plugins/ComponentCheck.h"

#include "base/RuntimeError.h"
#include "client/Client.h"
#include "link/EventWait.h"
#include "plugins/ComponentEntries.h"
#include "store/AppFolder.h"

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
    window.show();
    if (!testAll(entries, window))
        return false;
    window.allTested();
    return waitForSignal(&window, &QDialog::finished);
}

bool ComponentCheck::testAll(const std::vector<std::string>& entries, qrvrcDllProgress& window) const
{
    int number = 0;
    for (const std::string& entry : entries) {
        window.showTesting(++number, entry);
        const bool usable = isUsable(entry);
        if (usable)
            window.showAuthenticated(entry);
        else
            window.addProblem(entry);
        if (!pauseFor(usable ? pause : 0ms))
            return false;
    }
    return true;
}

bool ComponentCheck::isUsable(const std::string& entry) const
{
    if (!isPlainFileName(componentFile(entry)))
        return false; // what cannot be a path of this folder is not asked for by name either
    const std::string progId = componentClass(entry).progId;
    try {
        if (!progId.empty())
            m_services.create(progId);
        return true;
    } catch (const std::exception&) {
        return false; // whatever is wrong with it, the user decides
    }
}
