#pragma once

#include "platform/components/Component.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class ImageButton;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QProgressBar;
class QTimer;
struct Client;
struct ProblemFiles;
struct ProblemLine;

/// What the component check needs of other parts of the program.
struct ComponentServices
{
    /// Creates a component and lets go of it. May let events run. @return what stands in the way
    std::function<ComponentFault(const std::string& progId)> test;
    /// Calls a library's own registration. May let events run. @return why it failed
    std::function<ComponentFault(const std::filesystem::path& file)> registerFile;
    /// Opens the text viewer.
    std::function<void(const QString& caption, const QString& text)> showText;
};

/// Follows the component check, and lets the user deal with the files that failed: register, delete, export, or proceed
/// without them. `finished` is emitted when it is done; until then it cannot be closed without an answer.
class qrvrcDllProgress : public QDialog
{
    Q_OBJECT

public:
    /// All but `parent` outlive the window.
    /// @param problems  takes the files that the user proceeds without
    qrvrcDllProgress(Client& client, const ComponentServices& services, ProblemFiles& problems, QWidget* parent);

    void setEntryCount(int count);
    /// @param number  of the entry under test, from 1
    void showTesting(int number, const std::string& entry);
    void showAuthenticated(const std::string& entry);
    /// Shows and lists an entry that failed.
    void addProblem(const std::string& entry, const std::string& why);
    bool hasProblems() const;
    /// All is tested: from now on the window is the user's, who decides about what failed.
    void listProblems();

public Q_SLOTS:
    /// Whatever would close the window asks what Proceed asks.
    void reject() override;

private:
    void buildControls();
    void layOut();
    void buildMenu();
    void wireSignals();
    void proceed();
    void enableActions(bool enabled);
    void exportProblems();
    void registerSelected();
    void deleteSelected();
    /// @return why it failed
    ComponentFault RegisterFile(const std::string& entry);
    bool deleteFile(const std::string& entry) const;
    std::vector<ProblemLine> problemLines() const;
    /// The selected lines from top to bottom.
    std::vector<std::string> selectedLines() const;
    void setReason(QListWidgetItem& item, const std::string& why) const;
    QListWidgetItem* itemOf(const std::string& line) const;
    void removeLine(const std::string& line);

    Client& m_client;
    const ComponentServices& m_services;
    ProblemFiles& m_problems;
    int m_number = 0;
    bool m_isUsers = false; ///< all is tested
    bool m_isBusy = false;  ///< asks, or registers

    QLabel* Label1 = nullptr;
    QProgressBar* ProgressBar1 = nullptr;
    QListWidget* List1 = nullptr;
    QLabel* Label2 = nullptr;
    ImageButton* cmdProceed = nullptr;
    ImageButton* cmdExport = nullptr;
    QMenu* mnuMain = nullptr;
    QAction* mnuRegister = nullptr;
    QAction* mnuDelete = nullptr;
    QTimer* Timer1 = nullptr;
};
