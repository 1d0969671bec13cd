#include "profiles/qrvrcProfilesList.h"

#include "base/Text.h"
#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "navigation/PermissionRecords.h"
#include "navigation/SelectedProfile.h"
#include "platform/CodePage.h"
#include "plugins/PluginTable.h"
#include "profiles/ProfileActions.h"
#include "profiles/ProfileControls.h"
#include "profiles/ProfilePictures.h"
#include "profiles/ProfileRecord.h"
#include "store/AppFolder.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"

#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>

using namespace Qt::StringLiterals;

qrvrcProfilesList::qrvrcProfilesList(Client& client, const Permissions& permissions, const PluginTable& plugins,
                                     SelectedProfile& selected, ActionHooks hooks, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_plugins(plugins),
      m_selected(selected),
      m_pictures(std::make_unique<ProfilePictures>(client.folder, client.pictures)),
      m_actions(std::make_unique<ProfileActions>(client, *this, std::move(hooks))),
      m_records(std::make_shared<const std::vector<ProfileRecord>>())
{
    setObjectName(u"qrvrcProfilesList"_s);
    buildControls();
    buildMenu();
    placeControls();
    const auto entry = [this](const QString& name) { return mnuMain->findChild<QAction*>(name); };
    m_controls = std::make_unique<ProfileControls>(
        ProfileControls::Controls{cmdAttach, cmdDetach, cmdStart, cmdStop, cmdModify, entry(u"mnuAttach"_s),
                                  entry(u"mnuDetach"_s), entry(u"mnuStart"_s), entry(u"mnuStop"_s),
                                  mnuMode->menuAction(), entry(u"mnuModify"_s), entry(u"mnuDelete"_s)},
        permissions);
    m_controls->reset();
    wireSignals();
}

qrvrcProfilesList::~qrvrcProfilesList() = default;

void qrvrcProfilesList::wireSignals()
{
    const auto selectionChanged = m_client.reporter.trapped("fgProfiles_MouseDown", [this] { updateSelection(); });
    connect(fgProfiles->selectionModel(), &QItemSelectionModel::currentChanged, this, selectionChanged);
    connect(fgProfiles, &QTableView::pressed, this, selectionChanged);
    connect(fgProfiles, &QTableView::customContextMenuRequested, this, &qrvrcProfilesList::popUpMenu);
    connect(cmdQuit, &ImageButton::activated, this, &qrvrcProfilesList::quitRequested);
    connect(tmrRefresh, &QTimer::timeout, this, &qrvrcProfilesList::refreshQuietly);
    connect(&m_client.link, &clsWinSock::loginSucceeded, this, [this] { m_controls->reset(); });
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] { showNoProfiles(u"Not connected."_s); });
    for (ImageButton* button : {cmdAttach, cmdDetach, cmdStart, cmdStop, cmdModify})
        connect(button, &ImageButton::clicked, this, [this, button] { m_actions->run(button->objectName()); });
    connect(mnuMain, &QMenu::triggered, this, &qrvrcProfilesList::menuChosen);
    auto* deleteKey = new QShortcut(QKeySequence::Delete, fgProfiles, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this] {
        if (mnuMain->findChild<QAction*>(u"mnuDelete"_s)->isEnabled())
            m_actions->run(u"mnuDelete"_s);
    });
    m_client.replies.on("GetProfiles", this, [this](std::string_view body) { showProfiles(body); });
}

void qrvrcProfilesList::Form_Activate()
{
    m_client.helpSection = u"Profile List"_s;
    fgProfiles->setFocus();
    tmrRefresh->start();
    // Behind the click that led here, which holds the tab strips: they are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcProfilesList::FormReload);
}

void qrvrcProfilesList::FormReload()
{
    m_keptId = 0;
    const QPointer<QWidget> self(this);
    if (m_client.link.isLoggedIn())
        askForProfiles();
    else
        showNoProfiles(u"Not connected."_s);
    if (!self)
        return; // closed while its events ran
    updateSelection();
}

void qrvrcProfilesList::refreshQuietly()
{
    // The list does not move under a menu, a box or a button that is held down.
    if (!isVisible() || !isEnabled() || !m_client.link.isLoggedIn() || m_isAsking || m_client.link.isAwaitingReply() ||
        QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
        QApplication::mouseButtons() != Qt::NoButton)
        return;
    m_keptId = m_selected.id;
    askForProfiles();
}

void qrvrcProfilesList::askForProfiles()
{
    const QPointer<QWidget> self(this);
    const QScopedValueRollback asking(m_isAsking, true);
    fgProfiles->setEmptyText(u"Asking the tracker for its profiles..."_s);
    const WaitEnd end = ask(m_client.link, getProfilesRequest(m_client.session.user, m_pictures->heldPictures()));
    if (self && end != WaitEnd::Replied)
        showNoProfiles(u"The tracker did not answer."_s);
}

void qrvrcProfilesList::showProfiles(std::string_view body)
{
    // A message to a plugin can take the place of the answer that another request still waits for; what comes then in
    // place of this list is no list, and the next refresh brings one.
    if (body.find('_') == std::string_view::npos)
        return;
    std::vector<ProfileRecord> records;
    const std::vector<ProfileElement> elements = splitProfilesReply(body);
    records.reserve(elements.size());
    // An element that cannot be shown ends the list; those before it are shown all the same.
    const auto show = qScopeGuard([&] { showRecords(std::move(records)); });
    m_client.folder.makeFolder("\\profiles");
    for (const ProfileElement& element : elements)
        records.push_back(take(element));
}

ProfileRecord qrvrcProfilesList::take(const ProfileElement& element)
{
    ProfileRecord record = decodeProfileRecord(element.text);
    m_pictures->makeProfileFolder(record.id);
    m_pictures->keepModPicture(record.modPicture, element.picture);
    return record;
}

void qrvrcProfilesList::showRecords(std::vector<ProfileRecord> records)
{
    m_selected.gameVersions.assign(1, {});
    int kept = -1;
    for (const ProfileRecord& record : records) {
        if (m_keptId != 0 && parseInt32(record.id) == m_keptId)
            kept = static_cast<int>(m_selected.gameVersions.size()) - 1;
        m_selected.gameVersions.push_back(record.gameVersion);
    }
    const int scrolled = fgProfiles->verticalScrollBar()->value();
    fgProfiles->setEmptyText(u"The tracker has no profiles."_s);
    m_records = std::make_shared<const std::vector<ProfileRecord>>(std::move(records));
    fgProfiles->rows().setRows(static_cast<int>(m_records->size()), [this, shown = m_records](int row) {
        return rowFor(shown->at(static_cast<std::size_t>(row)));
    });
    if (kept >= 0)
        fgProfiles->verticalScrollBar()->setValue(scrolled);
    selectRow(std::max(kept, 0));
}

GridRow qrvrcProfilesList::rowFor(const ProfileRecord& record)
{
    const CodePage& codePage = m_client.codePage;
    GridRow row{.cells = {codePage.toText(record.id),
                          codePage.toText(record.name),
                          {},
                          codePage.toText(record.players),
                          codePage.toText(record.map),
                          codePage.toText(record.gameType),
                          codePage.toText(record.timer),
                          codePage.toText(record.statusText),
                          {}},
                .pictures = {},
                .data = record.status};
    const qreal ratio = devicePixelRatioF();
    if (QPixmap mod = m_pictures->modPicture(record.modPicture, ratio); !mod.isNull())
        row.pictures.push_back({Mod, std::move(mod), codePage.toText(record.modPicture)});
    if (QPixmap status = m_pictures->statusPicture(record.status, ratio); !status.isNull())
        row.pictures.push_back({Status, std::move(status), ProfilePictures::statusMeaning(record.status)});
    return row;
}

void qrvrcProfilesList::showNoProfiles(const QString& why)
{
    fgProfiles->setEmptyText(why);
    fgProfiles->rows().clear();
    m_records = std::make_shared<const std::vector<ProfileRecord>>();
    m_selected = SelectedProfile();
    updateSelection();
}

int qrvrcProfilesList::rowCount() const
{
    return fgProfiles->rows().rowCount();
}

std::optional<ProfileRecord> qrvrcProfilesList::selectedRecord() const
{
    const int row = fgProfiles->selectedRow();
    if (row < 0)
        return {};
    return m_records->at(static_cast<std::size_t>(row));
}

void qrvrcProfilesList::followPlugins()
{
    for (QAction* entry : std::exchange(m_pluginEntries, {}))
        delete entry;
    for (const Plugin& plugin : m_plugins.plugins) {
        if (!plugin.isOffered() || !plugin.profileMenu)
            continue;
        if (m_pluginEntries.empty())
            m_pluginEntries.push_back(mnuMain->addSeparator());
        for (const std::string& item : plugin.profileMenuItems) {
            QAction* entry = mnuMain->addAction(m_client.codePage.toText(item).replace(u'&', u"&&"_s));
            connect(entry, &QAction::triggered, this,
                    [this, name = plugin.name, item] { Q_EMIT pluginChosen(name, item); });
            m_pluginEntries.push_back(entry);
        }
    }
    updateSelection();
}

void qrvrcProfilesList::menuChosen(const QAction* action)
{
    // Behind the menu, which still has the keyboard: an action may open a window or wait.
    QTimer::singleShot(0, this, [this, name = action->objectName()] { m_actions->run(name); });
}

void qrvrcProfilesList::selectRow(int row)
{
    if (row < rowCount())
        fgProfiles->selectRow(row);
    updateSelection();
}

void qrvrcProfilesList::updateSelection()
{
    const int row = fgProfiles->selectedRow();
    RowState state{.hasStartPlugin = m_plugins.isEnabled(startPlugin)};
    if (row < 0) {
        m_selected.row = 0;
        m_selected.id = 0;
        m_selected.status = 0;
        m_selected.name.clear();
    } else {
        m_selected.row = row + 1;
        m_selected.id = fgProfiles->rows().text(row, Id).toInt();
        m_selected.status = fgProfiles->rows().row(row).data;
        m_selected.name = m_records->at(static_cast<std::size_t>(row)).name;
        state.isSelected = true;
        state.isHosting = !fgProfiles->rows().text(row, Map).isEmpty();
        state.isStartable = m_selected.gameVersion() == deltaForceVersion;
    }
    m_controls->apply(state);
}

void qrvrcProfilesList::popUpMenu(const QPoint& position)
{
    const QModelIndex under = fgProfiles->indexAt(position);
    if (!under.isValid())
        return;
    selectRow(under.row());
    mnuMain->popup(fgProfiles->viewport()->mapToGlobal(position));
}
