#include "profiles/list/qrvrcProfilesList.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "client/PermissionRecords.h"
#include "client/QuietRefresh.h"
#include "client/SelectedProfile.h"
#include "diagnostics/report/Reporter.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"
#include "plugins/PluginTable.h"
#include "profiles/list/ProfileControls.h"
#include "profiles/list/ProfileGrid.h"
#include "profiles/list/ProfileLegend.h"
#include "profiles/list/ProfileMenu.h"
#include "profiles/list/ProfilePictures.h"
#include "store/AppFolder.h"
#include "ui/CutNote.h"
#include "ui/ImageButton.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int pageSpacing = 6;
constexpr QMargins gridMargins(7, 2, 7, 7);
constexpr int buttonWidth = 130;
constexpr int buttonSpacing = 8;

/// Decodes a profile and notes what is to be kept for it.
/// @throws RuntimeError as `decodeProfileRecord` does; PermissionDenied for a picture that is no plain name
ProfileRecord takeProfile(const ProfileElement& element, ProfileFiles::Wanted& files)
{
    ProfileRecord record = decodeProfileRecord(element.text);
    const bool hasPicture = !trimmed(record.modPicture).empty();
    if (hasPicture && !isPlainFileName(record.modPicture))
        throw RuntimeError(ErrorNumber::PermissionDenied, record.modPicture);
    files.folders.push_back(record.id);
    if (hasPicture && !element.picture.empty())
        files.pictures.push_back({record.modPicture, element.picture});
    return record;
}

ListNews newsOf(const std::vector<ProfileRecord>& records)
{
    ListNews news{.isKnown = true, .profiles = records.size()};
    for (const ProfileRecord& record : records) {
        news.hosting += record.map.empty() ? 0 : 1;
        news.players += playersIn(record);
    }
    return news;
}

} // namespace

qrvrcProfilesList::qrvrcProfilesList(Client& client, const Permissions& permissions, const PluginTable& plugins,
                                     SelectedProfile& selected, ActionHooks hooks, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_plugins(plugins),
      m_selected(selected),
      m_pictures(std::make_unique<ProfilePictures>(client.folder, client.pictures)),
      m_actions(std::make_unique<ProfileActions>(client, *this, std::move(hooks))),
      m_refresh(std::make_unique<ListRefresh>(
          client.link, [this] { return getProfilesRequest(m_client.link.user(), m_pictures->heldPictures()); })),
      m_files(
          std::make_unique<ProfileFiles>(client.folder, client.bounds, [this](const ProfileFiles::Outcome& outcome) {
              m_client.reporter.trap("HandleData", [&] { takeOutcome(outcome); });
          }))
{
    setObjectName(u"qrvrcProfilesList"_s);
    buildControls();
    layOut();
    followPrivileges(permissions);
    wireSignals();
}

qrvrcProfilesList::~qrvrcProfilesList() = default;

void qrvrcProfilesList::buildControls()
{
    fmeProfiles = new QGroupBox(u"Profiles"_s, this);
    fmeProfiles->setObjectName(u"fmeProfiles"_s);
    fgProfiles = new ProfileGrid(m_client.codePage, *m_pictures, fmeProfiles);
    fgProfiles->setEmptyText(u"Not connected."_s);
    lblProfilesCut = new CutNote(u"lblProfilesCut"_s, fmeProfiles);
    mnuMain = new ProfileMenu(*fgProfiles, this);
    buildButtons();
    fmeLegend = newLegend(*m_pictures, this);
    m_clock = new QuietRefresh(m_client, *this, u"tmrRefresh"_s, &Preferences::listRefresh);
}

void qrvrcProfilesList::buildButtons()
{
    const auto button = [this](const QString& name, const QString& caption) {
        auto* made = new ImageButton(name, caption, m_client.pictures, this);
        made->face()->setFixedWidth(buttonWidth);
        return made;
    };
    cmdAttach = button(u"cmdAttach"_s, u"Attach Profile"_s);
    cmdDetach = button(u"cmdDetach"_s, u"Detach Profile"_s);
    cmdStart = button(u"cmdStart"_s, u"Start Game"_s);
    cmdStop = button(u"cmdStop"_s, u"Stop Game"_s);
    cmdModify = button(u"cmdModify"_s, u"Modify Profile"_s);
    cmdQuit = button(u"cmdQuit"_s, u"Quit"_s);
}

void qrvrcProfilesList::layOut()
{
    auto* profiles = new QVBoxLayout(fmeProfiles);
    profiles->setContentsMargins(gridMargins);
    profiles->addWidget(fgProfiles);
    profiles->addWidget(lblProfilesCut);

    // Attach and Detach share a place, as Start and Stop do: of each pair one is shown.
    auto* buttons = new QGridLayout;
    buttons->setHorizontalSpacing(buttonSpacing);
    buttons->addWidget(cmdAttach->face(), 0, 0);
    buttons->addWidget(cmdDetach->face(), 0, 0);
    buttons->addWidget(cmdModify->face(), 0, 1);
    buttons->addWidget(cmdStart->face(), 0, 2); // last, because the place is empty without the game-start plugin
    buttons->addWidget(cmdStop->face(), 0, 2);
    buttons->addWidget(cmdQuit->face(), 0, 3, Qt::AlignRight);
    buttons->setColumnMinimumWidth(0, buttonWidth);
    buttons->setColumnStretch(3, 1);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(pageMargins);
    page->setSpacing(pageSpacing);
    page->addWidget(fmeProfiles, 1);
    page->addWidget(fmeLegend);
    page->addLayout(buttons);
}

void qrvrcProfilesList::followPrivileges(const Permissions& permissions)
{
    const auto entry = [this](const QString& name) { return mnuMain->entry(name); };
    m_controls = std::make_unique<ProfileControls>(
        ProfileControls::Controls{cmdAttach, cmdDetach, cmdStart, cmdStop, cmdModify, entry(u"mnuAttach"_s),
                                  entry(u"mnuDetach"_s), entry(u"mnuStart"_s), entry(u"mnuStop"_s), entry(u"mnuMode"_s),
                                  entry(u"mnuModify"_s), entry(u"mnuDelete"_s)},
        permissions);
    m_controls->reset();
}

void qrvrcProfilesList::wireSignals()
{
    connect(fgProfiles, &ProfileGrid::rowChosen, this,
            m_client.reporter.trapped("fgProfiles_MouseDown", [this] { updateSelection(); }));
    connect(cmdQuit, &ImageButton::activated, this, &qrvrcProfilesList::quitRequested);
    connect(m_clock, &QuietRefresh::due, this, [this] {
        if (!m_refresh->isUnderWay())
            m_refresh->start({.asked = PendingRequest::Asked::ByClock});
    });
    connect(&m_client.link, &clsWinSock::loginSucceeded, this, [this] { m_controls->reset(); });
    connect(&m_client.link, &clsWinSock::linkLost, this, &qrvrcProfilesList::followLoss);
    m_client.replies.on("GetProfiles", this,
                        [this](std::string_view body, const ReplyOwner& owner) { showProfiles(body, owner); });
    wireActions();
}

/// Whatever is done with a profile, the press or the menu settles with which one.
void qrvrcProfilesList::wireActions()
{
    const std::array<std::pair<ImageButton*, ProfileAction>, 5> buttons{{
        {cmdAttach, ProfileAction::Attach},
        {cmdDetach, ProfileAction::Detach},
        {cmdStart, ProfileAction::StartGame},
        {cmdStop, ProfileAction::StopGame},
        {cmdModify, ProfileAction::Modify},
    }};
    for (const auto& [button, action] : buttons) {
        connect(button, &ImageButton::pressed, this, [this] { m_pressAim = fgProfiles->aimAtSelected(); });
        connect(button, &ImageButton::clicked, this, [this, does = action] {
            if (const auto aim = m_pressAim)
                m_actions->run(does, *aim);
        });
    }
    connect(mnuMain, &ProfileMenu::actionChosen, this,
            [this](ProfileAction action, const ProfileAim& aim) { m_actions->run(action, aim); });
    connect(mnuMain, &ProfileMenu::pluginChosen, this, &qrvrcProfilesList::choosePlugin);
    auto* deleteKey = new QShortcut(QKeySequence::Delete, fgProfiles, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this] {
        const auto aim = fgProfiles->aimAtSelected();
        if (aim && mnuMain->entry(u"mnuDelete"_s)->isEnabled())
            m_actions->run(ProfileAction::Delete, *aim);
    });
}

void qrvrcProfilesList::Form_Activate()
{
    fgProfiles->setFocus();
    m_clock->start();
    // Behind the click that led here, which holds the tab strips: they are not to wait for the tracker.
    QTimer::singleShot(0, this, [this] { reload(std::exchange(m_returnTo, {}), fgProfiles->choices()); });
}

QString qrvrcProfilesList::helpSection() const
{
    return m_actions->isStartingGame() ? u"IGNORE"_s : u"Profile List"_s;
}

void qrvrcProfilesList::FormReload()
{
    reload({}, fgProfiles->choices());
}

void qrvrcProfilesList::reloadBehind(const ProfileAim& aim)
{
    reload(aim.profile.id, aim.choice);
}

void qrvrcProfilesList::chooseOnReturn(const ProfileAim& aim)
{
    m_returnTo = aim.profile.id;
}

void qrvrcProfilesList::reloadBehindLoss()
{
    reload(std::exchange(m_returnTo, {}), fgProfiles->choices());
}

void qrvrcProfilesList::reload(const std::optional<std::string>& profile, unsigned choice)
{
    const QPointer<QWidget> self(this);
    if (m_client.link.isLoggedIn()) {
        fgProfiles->setEmptyText(u"Asking the tracker for its profiles..."_s);
        if (rowCount() == 0)
            Q_EMIT listTold({.why = u"asking the tracker for its profiles"_s});
        m_refresh->start({.profile = profile, .choice = choice});
    } else {
        showNoProfiles(u"Not connected."_s);
    }
    if (self) // it may have been closed while its events ran
        updateSelection();
}

/// A profile that cannot be shown ends the list, and those before it are shown.
void qrvrcProfilesList::showProfiles(std::string_view body, const ReplyOwner& owner)
{
    const ListRefresh::Wish wish = m_refresh->takeWish();
    if (body.find('_') == std::string_view::npos) { // no list at all, not even an empty one
        fgProfiles->setEmptyText(u"The tracker sent no list of profiles."_s);
        if (rowCount() == 0)
            Q_EMIT listTold({.why = u"the tracker sent no list of profiles"_s});
        return;
    }
    const bool isQuiet = wish.asked == PendingRequest::Asked::ByClock;
    const ProfileElements elements = splitProfilesReply(body, m_client.bounds.listRows);
    std::vector<ProfileRecord> records;
    ProfileFiles::Wanted files{.folders = {}, .pictures = {}, .owner = owner};
    records.reserve(elements.profiles.size());
    files.folders.reserve(elements.profiles.size());
    std::optional<RuntimeError> damage;
    try {
        for (const ProfileElement& element : elements.profiles)
            records.push_back(takeProfile(element, files));
    } catch (const RuntimeError& error) {
        damage = error;
    }
    m_files->keep(std::move(files));
    m_selected.hasProfiles = !records.empty();
    fgProfiles->setEmptyText(u"The tracker has no profiles."_s);
    const ListNews news = newsOf(records);
    lblProfilesCut->tell(elements.isCut, std::ssize(records));
    fgProfiles->showRecords(std::move(records));
    if (!isQuiet && wish.choice == fgProfiles->choices())
        fgProfiles->select(wish.profile);
    updateSelection();
    Q_EMIT listTold(news);
    tellDamage(damage, isQuiet, m_lastDamage);
}

void qrvrcProfilesList::takeOutcome(const ProfileFiles::Outcome& outcome)
{
    if (outcome.hasNewPictures)
        fgProfiles->showNewPictures();
    if (outcome.leftOut > 0 && !std::exchange(m_isLeftOutTold, true))
        m_client.reporter.ReportMsg(
            MessageKind::Failed,
            u"Pictures of mods that the tracker sent are left out: %1, the first of them '%2'. A picture is a GIF, "
            u"PNG, "
            u"JPEG or BMP file of at most %3 KiB and %4 points either way, and %5 of them are kept."_s.arg(
                QString::number(outcome.leftOut), m_client.codePage.toText(outcome.firstLeftOut),
                QString::number(m_client.bounds.modPictureBytes / Bounds::kibibyte),
                QString::number(m_client.bounds.modPictureSide), QString::number(m_client.bounds.modPictures)));
    tellDamage(outcome.fault, true, m_lastFault);
}

/// @param told  what was told of the list before; nobody is told twice of what he has not asked for
/// @throws RuntimeError the damage, unless it is known
void qrvrcProfilesList::tellDamage(const std::optional<RuntimeError>& damage, bool isQuiet,
                                   std::optional<std::string>& told)
{
    const auto known = std::exchange(told, damage ? std::optional(damage->description()) : std::nullopt);
    if (damage && !(isQuiet && known == told))
        throw *damage;
}

void qrvrcProfilesList::showNoProfiles(const QString& why)
{
    fgProfiles->clearRecords(why);
    m_selected = SelectedProfile();
    updateSelection();
    Q_EMIT listTold({});
}

void qrvrcProfilesList::followLoss()
{
    if (const auto aim = fgProfiles->aimAtSelected())
        m_lostFrom = aim->profile.id;
    mnuMain->drop();
    m_pressAim.reset();
    m_returnTo.reset();
    m_lastDamage.reset();
    m_lastFault.reset();
    lblProfilesCut->tell(false, 0);
    showNoProfiles(u"Not connected."_s);
}

int qrvrcProfilesList::rowCount() const
{
    return fgProfiles->rows().rowCount();
}

std::optional<ProfileRecord> qrvrcProfilesList::find(std::string_view id) const
{
    return fgProfiles->find(id);
}

void qrvrcProfilesList::tellGone(const ProfileRecord& profile)
{
    if (m_client.link.isLoggedIn())
        m_client.reporter.ReportMsg(
            MessageKind::Failed, u"The profile '%1' is no longer there."_s.arg(m_client.codePage.toText(profile.name)));
}

void qrvrcProfilesList::followPlugins()
{
    mnuMain->followPlugins(m_plugins, m_client.codePage);
    updateSelection();
}

void qrvrcProfilesList::choosePlugin(const std::string& plugin, const std::string& menuItem, const ProfileAim& aim)
{
    if (const auto profile = find(aim.profile.id))
        Q_EMIT pluginChosen(plugin, menuItem, ::chosen(*profile));
    else
        tellGone(aim.profile);
}

void qrvrcProfilesList::updateSelection()
{
    RowState state{.hasStartPlugin = m_plugins.isEnabled(startPlugin)};
    m_selected.profile.reset();
    if (const auto aim = fgProfiles->aimAtSelected()) {
        m_selected.profile = chosen(aim->profile);
        state.isSelected = true;
        state.isHosting = !aim->profile.map.empty();
        state.isStartable = aim->profile.gameVersion == deltaForceVersion;
    }
    m_controls->apply(state);
}
