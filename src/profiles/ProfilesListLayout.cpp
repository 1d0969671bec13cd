// How the profile list is built and laid out. What it does is in qrvrcProfilesList.cpp.

#include "profiles/qrvrcProfilesList.h"

#include "link/Client.h"
#include "profiles/ProfilePictures.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"

#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTimer>

#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// How often the list follows the tracker while it is in front.
constexpr auto refreshPause = 5s;

struct LegendEntry
{
    const char16_t* picture; ///< name of the control with the picture
    const char16_t* label;
    std::int32_t status;
};

constexpr std::array legend{
    LegendEntry{u"ImgNA", u"lblNA", 5}, LegendEntry{u"ImgNH", u"lblNH", 0}, LegendEntry{u"ImgLM", u"lblLM", 1},
    LegendEntry{u"ImgHM", u"lblHM", 2}, LegendEntry{u"imgSM", u"lblSM", 4},
};

struct MenuEntry
{
    const char16_t* name; ///< null for a separator
    const char16_t* caption;
};

constexpr std::array beforeMode{
    MenuEntry{u"mnuAttach", u"Attach to Process"},
    MenuEntry{u"mnuDetach", u"Detach from Process"},
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuStart", u"Start Game"},
    MenuEntry{u"mnuStop", u"Stop Game"},
};
constexpr std::array modes{
    MenuEntry{u"mnuGeneral", u"General"},
    MenuEntry{u"mnuSquad", u"Squad Match"},
    MenuEntry{u"menuTournament", u"Tournament"},
};
constexpr std::array behindMode{
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuModify", u"Modify Profile"},
    MenuEntry{u"mnuDelete", u"Delete Profile"},
    MenuEntry{nullptr, nullptr},
    MenuEntry{u"mnuPlayers", u"View Player Stats"},
    MenuEntry{u"mnuFileManager", u"Remote File Viewer"},
};

template <std::size_t count>
void addEntries(QMenu* menu, const std::array<MenuEntry, count>& entries)
{
    for (const MenuEntry& entry : entries) {
        if (!entry.name) {
            menu->addSeparator();
            continue;
        }
        // A child of the menu, so that it is found below it by its name.
        auto* action = new QAction(QString::fromUtf16(entry.caption), menu);
        action->setObjectName(QString::fromUtf16(entry.name));
        menu->addAction(action);
    }
}

} // namespace

void qrvrcProfilesList::buildControls()
{
    static constexpr std::array<GridColumn, ColumnCount> columns{{
        {"", 400_twips, Qt::AlignLeft},
        {"Game Name", 1600_twips, Qt::AlignLeft},
        {"", 350_twips, Qt::AlignHCenter},
        {"Players", 700_twips, Qt::AlignHCenter},
        {"Map", 2700_twips, Qt::AlignLeft},
        {"Gametype", 850_twips, Qt::AlignHCenter},
        {"Timer", 800_twips, Qt::AlignHCenter},
        {"Status", 2500_twips, Qt::AlignHCenter},
        {"", 300_twips, Qt::AlignHCenter},
    }};
    fmeProfiles = new QGroupBox(u"Profiles"_s, this);
    fmeProfiles->setObjectName(u"fmeProfiles"_s);
    fgProfiles = new GridView(u"fgProfiles"_s, fmeProfiles);
    fgProfiles->setAccessibleName(u"Profiles"_s);
    fgProfiles->setColumns(columns);
    fgProfiles->setEmptyText(u"Not connected."_s);
    fgProfiles->setContextMenuPolicy(Qt::CustomContextMenu);

    const auto button = [this](const QString& name, const QString& caption) {
        return new ImageButton(name, caption, m_client.pictures, this);
    };
    cmdAttach = button(u"cmdAttach"_s, u"Attach Profile"_s);
    cmdDetach = button(u"cmdDetach"_s, u"Detach Profile"_s);
    cmdStart = button(u"cmdStart"_s, u"Start Game"_s);
    cmdStop = button(u"cmdStop"_s, u"Stop Game"_s);
    cmdModify = button(u"cmdModify"_s, u"Modify Profile"_s);
    cmdQuit = button(u"cmdQuit"_s, u"Quit"_s);
    buildLegend();

    tmrRefresh = new QTimer(this);
    tmrRefresh->setObjectName(u"tmrRefresh"_s);
    tmrRefresh->setInterval(refreshPause);
}

void qrvrcProfilesList::buildLegend()
{
    fmeLegend = new QGroupBox(u"Legend"_s, this);
    fmeLegend->setObjectName(u"fmeLegend"_s);
    int x = 16;
    for (const LegendEntry& entry : legend) {
        auto* picture = new QLabel(fmeLegend);
        picture->setObjectName(QString::fromUtf16(entry.picture));
        picture->setPixmap(m_pictures->statusPicture(entry.status, devicePixelRatioF()));
        picture->setGeometry(x, 26, 16, 16);
        auto* label = new QLabel(ProfilePictures::statusMeaning(entry.status), fmeLegend);
        label->setObjectName(QString::fromUtf16(entry.label));
        label->adjustSize();
        label->move(x + 22, 34 - label->height() / 2);
        x += 148;
    }
}

void qrvrcProfilesList::buildMenu()
{
    mnuMain = new QMenu(this);
    mnuMain->setObjectName(u"mnuMain"_s);
    addEntries(mnuMain, beforeMode);
    mnuMode = mnuMain->addMenu(u"Tracking Mode"_s);
    mnuMode->setObjectName(u"mnuMode"_s);
    mnuMode->menuAction()->setObjectName(u"mnuMode"_s);
    addEntries(mnuMode, modes);
    // The tracker knows no request that would change the mode.
    for (QAction* mode : mnuMode->actions())
        mode->setEnabled(false);
    addEntries(mnuMain, behindMode);
    mnuMain->addSeparator();
    QMenu* copy = mnuMain->addMenu(u"Copy"_s);
    copy->setObjectName(u"mnuCopy"_s);
    copy->menuAction()->setObjectName(u"mnuCopy"_s);
    copy->addActions(fgProfiles->copyActions());
}

void qrvrcProfilesList::placeControls()
{
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    constexpr int margin = 8;
    constexpr int legendHeight = 50;
    constexpr int buttonHeight = 30;
    const int width = page.width() - 2 * margin;
    const int buttonTop = page.height() - margin - buttonHeight;
    const int legendTop = buttonTop - 8 - legendHeight;
    fmeProfiles->setGeometry(margin, 2, width, legendTop - 6);
    fgProfiles->setGeometry(10, 22, width - 20, fmeProfiles->height() - 32);
    fmeLegend->setGeometry(margin, legendTop, width, legendHeight);

    // Attach and Detach share a place, as Start and Stop do: of each pair one is shown.
    constexpr int buttonWidth = 130;
    const auto at = [&](int place) {
        return QRect(margin + place * (buttonWidth + 8), buttonTop, buttonWidth, buttonHeight);
    };
    cmdAttach->place(at(0));
    cmdDetach->place(at(0));
    cmdModify->place(at(1));
    cmdStart->place(at(2)); // last, because the place is empty without the game-start plugin
    cmdStop->place(at(2));
    cmdQuit->place(QRect(page.width() - margin - buttonWidth, buttonTop, buttonWidth, buttonHeight));
}
