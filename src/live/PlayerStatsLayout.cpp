// How the player statistics are built and laid out. What they do is in qrvrcPlayerStats.cpp.

#include "live/qrvrcPlayerStats.h"

#include "link/Client.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "ui/StripTabBar.h"

#include <QGroupBox>
#include <QLabel>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr int margin = 8;
constexpr int gap = 6;
constexpr Twips buttonTop{250};
constexpr Twips buttonWidth{1215};
constexpr Twips buttonHeight{375};
constexpr Twips refreshLeft{3960};
constexpr Twips closeLeft{5640};

constexpr std::array playerColumns{
    GridColumn{"Slot", 400_twips, Qt::AlignLeft},         GridColumn{"Name", 1100_twips, Qt::AlignLeft},
    GridColumn{"Team", 500_twips, Qt::AlignHCenter},      GridColumn{"Shots Fired", 900_twips, Qt::AlignRight},
    GridColumn{"Kills", 500_twips, Qt::AlignRight},       GridColumn{"Deaths", 600_twips, Qt::AlignRight},
    GridColumn{"DoubleKills", 900_twips, Qt::AlignRight}, GridColumn{"Headshots", 900_twips, Qt::AlignRight},
    GridColumn{"Knifings", 700_twips, Qt::AlignRight},    GridColumn{"SniperKills", 950_twips, Qt::AlignRight},
    GridColumn{"MedSaves", 950_twips, Qt::AlignRight},    GridColumn{"Exp.", 550_twips, Qt::AlignRight},
    GridColumn{"Timer", 800_twips, Qt::AlignRight},
};

constexpr std::array weaponColumns{
    GridColumn{"", 300_twips, Qt::AlignLeft},           GridColumn{"Weapon", 3900_twips, Qt::AlignLeft},
    GridColumn{"Stance", 1500_twips, Qt::AlignHCenter}, GridColumn{"Shots", 1000_twips, Qt::AlignRight},
    GridColumn{"Kills", 1000_twips, Qt::AlignRight},    GridColumn{"Exp.", 1000_twips, Qt::AlignRight},
    GridColumn{"Timer", 1000_twips, Qt::AlignRight},
};

} // namespace

void qrvrcPlayerStats::buildControls()
{
    tsMain = new StripTabBar(u"tsMain"_s, m_client.pictures, "\\background.gif", this);
    tsMain->setAccessibleName(u"Statistics"_s);
    tsMain->addKeyedTab(u"Player Stats"_s, u"fgPlayers"_s);
    tsMain->addKeyedTab(u"Weapon Stats"_s, u"fgWeapons"_s);

    lblTitle = new QLabel(this);
    lblTitle->setObjectName(u"lblTitle"_s);
    lblTitle->setTextFormat(Qt::PlainText);
    lblTitle->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    fgPlayers = new GridView(u"fgPlayers"_s, this);
    fgPlayers->setAccessibleName(u"Player statistics"_s);
    fgPlayers->setColumns(playerColumns);
    fgWeapons = new GridView(u"fgWeapons"_s, this);
    fgWeapons->setAccessibleName(u"Weapon statistics"_s);
    fgWeapons->setColumns(weaponColumns);
    fgWeapons->hide();
    buildOptions();
}

void qrvrcPlayerStats::buildOptions()
{
    fmeOptions = new QGroupBox(this);
    fmeOptions->setObjectName(u"fmeOptions"_s);
    fmeOptions->setAccessibleName(u"Options"_s);
    cmdRefresh = new ImageButton(u"cmdRefresh"_s, u"Refresh"_s, m_client.pictures, fmeOptions);
    cmdRefresh->setToolTip(u"Asks the tracker again (F5)"_s);
    cmdClose = new ImageButton(u"cmdClose"_s, u"Close"_s, m_client.pictures, fmeOptions);
    const auto at = [](Twips left) {
        return QRect(left.pixels(), buttonTop.pixels(), buttonWidth.pixels(), buttonHeight.pixels());
    };
    cmdRefresh->place(at(refreshLeft));
    cmdClose->place(at(closeLeft));
}

void qrvrcPlayerStats::placeControls()
{
    const int inner = width() - 2 * margin;
    const QSize tabs = tsMain->sizeHint();
    tsMain->setGeometry(margin, margin, tabs.width(), tabs.height());
    const int titleLeft = tsMain->geometry().right() + 2 * margin;
    lblTitle->setGeometry(titleLeft, margin, width() - margin - titleLeft, tabs.height());
    const int optionsHeight = (buttonTop + buttonHeight + buttonTop).pixels();
    fmeOptions->setGeometry(margin, height() - margin - optionsHeight, inner, optionsHeight);
    const int gridTop = margin + tabs.height() + gap;
    for (GridView* grid : {fgPlayers, fgWeapons})
        grid->setGeometry(margin, gridTop, inner, fmeOptions->y() - gap - gridTop);
    showTitle();
}

/// The first column is made for two digits; on a full server the positions have more.
void qrvrcPlayerStats::fitPositions()
{
    constexpr int cellMargins = 8; // pixels, both sides together
    const int rows = fgWeapons->rows().rowCount();
    const QString widest = rows > 0 ? fgWeapons->rows().text(rows - 1, 0) : QString();
    fgWeapons->setColumnWidth(
        0, std::max(weaponColumns[0].width.pixels(), fgWeapons->fontMetrics().horizontalAdvance(widest) + cellMargins));
}
