#include "plugins/qrvrcDllProgress.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "platform/system/SystemName.h"
#include "plugins/ComponentEntries.h"
#include "store/AppFolder.h"
#include "ui/CopyActions.h"
#include "ui/ImageButton.h"

#include <QDateTime>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QScreen>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr QSize usualSize(540, 340);
constexpr int margin = 16; // pixels, as the next
constexpr int gap = 12;
constexpr int buttonWidth = 112;
constexpr int lineRole = Qt::UserRole; ///< the problem line's bytes
constexpr int whyRole = lineRole + 1;  ///< the reason's bytes

const QString proceedQuestion = u"You still have unregistered ActiveX files!\r\n\r\n"
                                "Any files left unregsitered will not be loaded by the Quorvane Ravelin RC.\r\n\r\n"
                                "Too register them, tick the item in the list, then right click the list and "
                                "select 'Register Selected ActiveX Files'.\r\n\r\n"
                                "Do you wish to continue without registering the files"_s;

/// Shows which lines are selected by a tick in front of them, and the reason below each.
class TickDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features |= QStyleOptionViewItem::HasCheckIndicator;
        if (const QString why = index.data(Qt::AccessibleDescriptionRole).toString(); !why.isEmpty())
            option->text += QChar::LineSeparator + why;
        option->checkState = option->state.testFlag(QStyle::State_Selected) ? Qt::Checked : Qt::Unchecked;
    }
};

std::string lineOf(const QListWidgetItem& item)
{
    return item.data(lineRole).toByteArray().toStdString();
}

} // namespace

qrvrcDllProgress::qrvrcDllProgress(Client& client, const ComponentServices& services, ProblemFiles& problems,
                                   QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      m_client(client),
      m_services(services),
      m_problems(problems)
{
    setObjectName(u"qrvrcDllProgress"_s);
    setWindowTitle(u"Authenticating ActiveX Files"_s);
    setAttribute(Qt::WA_QuitOnClose, false); // the program goes on behind it
    resize(usualSize);
    if (!parentWidget() || !parentWidget()->isVisible()) // the frame is not there yet at a start
        move(screen()->availableGeometry().center() - rect().center());
    buildControls();
    layOut();
    buildMenu();
    wireSignals();
}

void qrvrcDllProgress::buildControls()
{
    Label1 = new QLabel;
    Label1->setObjectName(u"Label1"_s);
    Label1->setTextFormat(Qt::PlainText);
    Label1->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long name must not widen the window
    ProgressBar1 = new QProgressBar;
    ProgressBar1->setObjectName(u"ProgressBar1"_s);
    ProgressBar1->setTextVisible(false);
    List1 = new QListWidget;
    List1->setObjectName(u"List1"_s);
    List1->setAccessibleName(u"Problematic ActiveX files"_s);
    List1->setSelectionMode(QAbstractItemView::MultiSelection);
    List1->setItemDelegate(new TickDelegate(List1));
    List1->setContextMenuPolicy(Qt::CustomContextMenu);
    List1->hide();
    Label2 = new QLabel(u"Right click the listbox for options."_s);
    Label2->setObjectName(u"Label2"_s);
    Label2->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    Label2->hide();
    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(100ms);

    Timer1->start();
    const auto button = [this](const QString& name, const QString& caption) {
        auto* made = new ImageButton(name, caption, m_client.pictures, this);
        made->setFontSize(9);
        made->face()->setFixedWidth(buttonWidth);
        made->setEnabled(false); // there is nothing to decide before all is tested
        return made;
    };
    cmdExport = button(u"cmdExport"_s, u"Export"_s);
    cmdProceed = button(u"cmdProceed"_s, u"Proceed"_s);
}

void qrvrcDllProgress::layOut()
{
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(gap);
    buttons->addStretch();
    buttons->addWidget(cmdExport->face(), 0, Qt::AlignBottom);
    buttons->addWidget(cmdProceed->face(), 0, Qt::AlignBottom);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(margin, margin, margin, margin);
    all->setSpacing(gap);
    all->addWidget(Label1);
    all->addWidget(ProgressBar1);
    all->addWidget(List1, 100);
    all->addWidget(Label2);
    all->addLayout(buttons, 1);
}

void qrvrcDllProgress::buildMenu()
{
    mnuMain = new QMenu(this);
    mnuMain->setObjectName(u"mnuMain"_s);
    mnuRegister = mnuMain->addAction(u"Register Selected ActiveX Files"_s);
    mnuRegister->setObjectName(u"mnuRegister"_s);
    mnuDelete = mnuMain->addAction(u"Delete Selected ActiveX Files"_s);
    mnuDelete->setObjectName(u"mnuDelete"_s);
    mnuDelete->setShortcut(QKeySequence::Delete);
    mnuDelete->setShortcutContext(Qt::WidgetShortcut);
    List1->addAction(mnuDelete);
    mnuMain->addSeparator();
    mnuMain->addActions(addCopyActions(List1));
}

void qrvrcDllProgress::wireSignals()
{
    connect(Timer1, &QTimer::timeout, this, [this] { ProgressBar1->setValue(m_number); });
    connect(cmdProceed, &ImageButton::clicked, this, &qrvrcDllProgress::reject);
    connect(cmdExport, &ImageButton::clicked, this,
            m_client.reporter.trapped("cmdExport_Click", [this] { exportProblems(); }));
    connect(mnuRegister, &QAction::triggered, this, &qrvrcDllProgress::registerSelected);
    connect(mnuDelete, &QAction::triggered, this, &qrvrcDllProgress::deleteSelected);
    connect(List1, &QListWidget::customContextMenuRequested, this,
            [this](QPoint position) { mnuMain->popup(List1->viewport()->mapToGlobal(position)); });
}

void qrvrcDllProgress::setEntryCount(int count)
{
    ProgressBar1->setRange(0, count);
    ProgressBar1->setValue(0);
}

void qrvrcDllProgress::showTesting(int number, const std::string& entry)
{
    m_number = number;
    Label1->setText(m_client.codePage.toText("Testing " + entry));
}

void qrvrcDllProgress::showAuthenticated(const std::string& entry)
{
    Label1->setText(m_client.codePage.toText(entry + " Authenticated"));
}

void qrvrcDllProgress::addProblem(const std::string& entry, const std::string& why)
{
    const bool isKnown = !componentClass(entry).type.empty();
    Label1->setText(
        m_client.codePage.toText(entry + (isKnown ? " Failed Instantiation Test" : " Failed Authentication")));
    const std::string line = problemLine(entry);
    auto* item = new QListWidgetItem(m_client.codePage.toText(line), List1);
    item->setData(lineRole, QByteArray::fromStdString(line));
    setReason(*item, why);
}

/// Below the line and as its tool tip, which shows all of it.
void qrvrcDllProgress::setReason(QListWidgetItem& item, const std::string& why) const
{
    const QString text = m_client.codePage.toText(why).simplified();
    item.setData(whyRole, QByteArray::fromStdString(why));
    item.setData(Qt::AccessibleDescriptionRole, text);
    item.setToolTip(Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal));
}

bool qrvrcDllProgress::hasProblems() const
{
    return List1->count() > 0;
}

void qrvrcDllProgress::listProblems()
{
    m_isUsers = true;
    Timer1->stop();
    setWindowTitle(u"Problematic ActiveX Files"_s);
    ProgressBar1->hide();
    Label1->hide();
    List1->show();
    Label2->show();
    enableActions(true);
    setTabOrder(List1, cmdExport);
    setTabOrder(cmdExport, cmdProceed);
    List1->setCurrentRow(0, QItemSelectionModel::NoUpdate);
    List1->setFocus();
    show();
}

void qrvrcDllProgress::reject()
{
    if (m_isUsers)
        proceed();
}

void qrvrcDllProgress::proceed()
{
    if (m_isBusy)
        return;
    const QScopedValueRollback busy(m_isBusy, true);
    if (List1->count() > 0 && !m_client.boxes.confirm(u"Caution!!!"_s, proceedQuestion))
        return;
    for (const ProblemLine& problem : problemLines()) {
        const std::string file(componentFile(entryOfProblem(problem.line)));
        m_problems.names.push_back(file);
        m_problems.reasons[lowerAscii(file)] = problem.why;
    }
    accept();
}

void qrvrcDllProgress::exportProblems()
{
    const QDateTime now = QDateTime::currentDateTime();
    const auto stamp = [&now](const QString& format) { return now.toString(format).toStdString(); };
    const std::string report =
        problemReport(stamp(u"yyyy-MM-dd"_s), stamp(u"HH:mm:ss"_s), systemName(), problemLines());
    m_services.showText(u"NotePad - Problematic ActiveX Files"_s, m_client.codePage.toText(report));
}

void qrvrcDllProgress::enableActions(bool enabled)
{
    for (ImageButton* button : {cmdProceed, cmdExport})
        button->setEnabled(enabled);
    for (QAction* action : {mnuRegister, mnuDelete})
        action->setEnabled(enabled);
}

void qrvrcDllProgress::registerSelected()
{
    const std::vector<std::string> lines = selectedLines();
    if (lines.empty())
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"You have not selected any items from the list to register!"_s);
    // Events run meanwhile; until it is known which files are left there is nothing to decide.
    const QScopedValueRollback busy(m_isBusy, true);
    enableActions(false);
    const auto over = qScopeGuard([this] { enableActions(true); });
    for (const std::string& line : lines) {
        const std::string entry(entryOfProblem(line));
        const QString name = m_client.codePage.toText(entry);
        if (const ComponentFault fault = RegisterFile(entry)) {
            if (QListWidgetItem* item = itemOf(line))
                setReason(*item, *fault);
            m_client.reporter.ReportMsg(MessageKind::Failed, u"Failed to Register ActiveX File "_s + name);
        } else {
            m_client.reporter.ReportMsg(MessageKind::Success, u"ActiveX File %1 Registered Successfully."_s.arg(name));
            removeLine(line);
        }
    }
}

void qrvrcDllProgress::deleteSelected()
{
    const std::vector<std::string> lines = selectedLines();
    if (lines.empty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"You have not selected any items from the list to delete!"_s);
        return;
    }
    if (!m_client.boxes.confirm(u"Confirmation Required"_s, u"Are you sure you wish to delete the selected items?"_s))
        return;
    for (const std::string& line : lines) {
        const std::string entry(entryOfProblem(line));
        const QString name = m_client.codePage.toText(entry);
        if (deleteFile(entry)) {
            m_client.reporter.ReportMsg(MessageKind::Success, u"ActiveX File %1 Deleted Successfully."_s.arg(name));
            removeLine(line);
        } else {
            m_client.reporter.ReportMsg(MessageKind::Failed, u"Failed to Delete ActiveX File "_s + name);
        }
    }
}

ComponentFault qrvrcDllProgress::RegisterFile(const std::string& entry)
{
    ComponentFault fault = "it cannot be registered";
    m_client.reporter.trap("RegisterFile",
                           [&] { fault = m_services.registerFile(m_client.folder.path(componentLayoutName(entry))); });
    return fault;
}

/// @return whether the file is gone
bool qrvrcDllProgress::deleteFile(const std::string& entry) const
{
    try {
        const std::filesystem::path file = m_client.folder.path(componentLayoutName(entry));
        std::error_code fault;
        std::filesystem::remove(file, fault);
        return std::filesystem::symlink_status(file, fault).type() == std::filesystem::file_type::not_found;
    } catch (const RuntimeError&) {
        return false; // no file of this folder has such a name; the user is told that it stays
    }
}

std::vector<ProblemLine> qrvrcDllProgress::problemLines() const
{
    std::vector<ProblemLine> lines;
    lines.reserve(static_cast<std::size_t>(List1->count()));
    for (int row = 0; row < List1->count(); ++row)
        lines.push_back({lineOf(*List1->item(row)), List1->item(row)->data(whyRole).toByteArray().toStdString()});
    return lines;
}

std::vector<std::string> qrvrcDllProgress::selectedLines() const
{
    std::vector<std::string> lines;
    for (int row = 0; row < List1->count(); ++row) {
        if (List1->item(row)->isSelected())
            lines.push_back(lineOf(*List1->item(row)));
    }
    return lines;
}

QListWidgetItem* qrvrcDllProgress::itemOf(const std::string& line) const
{
    for (int row = 0; row < List1->count(); ++row) {
        if (lineOf(*List1->item(row)) == line)
            return List1->item(row);
    }
    return nullptr;
}

void qrvrcDllProgress::removeLine(const std::string& line)
{
    delete itemOf(line);
}
