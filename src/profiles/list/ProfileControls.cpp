#include "profiles/list/ProfileControls.h"

#include "base/Text.h"
#include "client/PermissionRecords.h"
#include "ui/ImageButton.h"

#include <QAction>

#include <array>

namespace {

constexpr std::string_view section = "Profiles";
constexpr std::string_view editProfiles = "Edit Profiles";
constexpr std::string_view attachProfiles = "Attach Profiles to Games";
constexpr std::string_view detachProfiles = "Detach Profiles from Games";
constexpr std::string_view startGame = "Start Game from QRV";
constexpr std::string_view stopGame = "Stop Game from QRV";
constexpr std::string_view changeMode = "Change Profile Tracking Mode";

void setShown(ImageButton* button, bool shown, bool enabled)
{
    button->setVisible(shown);
    button->setEnabled(shown && enabled);
}

/// Whether the button can be used once its window can.
bool isUsable(const ImageButton* button)
{
    return !button->isHidden() && button->isEnabledTo(button->parentWidget());
}

} // namespace

ProfileControls::ProfileControls(const Controls& controls, const Permissions& permissions)
    : m_controls(controls),
      m_permissions(permissions)
{}

void ProfileControls::reset()
{
    const Controls& c = m_controls;
    setShown(c.cmdAttach, true, false);
    setShown(c.cmdModify, true, false);
    for (ImageButton* button : {c.cmdDetach, c.cmdStart, c.cmdStop})
        setShown(button, false, false);
    for (QAction* entry : {c.mnuAttach, c.mnuDetach, c.mnuStart, c.mnuStop, c.mnuMode, c.mnuModify, c.mnuDelete})
        entry->setEnabled(false);
}

void ProfileControls::applyPrivileges()
{
    struct Rule
    {
        std::string_view privilege;
        ImageButton* button;
        QAction* entry;
    };
    const Controls& c = m_controls;
    // Nobody who may not edit a profile may delete it.
    const std::array rules{
        Rule{editProfiles, nullptr, c.mnuDelete},       Rule{editProfiles, c.cmdModify, c.mnuModify},
        Rule{attachProfiles, c.cmdAttach, c.mnuAttach}, Rule{detachProfiles, c.cmdDetach, c.mnuDetach},
        Rule{startGame, c.cmdStart, c.mnuStart},        Rule{stopGame, c.cmdStop, c.mnuStop},
        Rule{changeMode, nullptr, c.mnuMode},
    };
    if (m_permissions.isSuper) {
        c.cmdModify->setEnabled(true);
        c.mnuModify->setEnabled(true);
        c.mnuDelete->setEnabled(true);
        return;
    }
    for (const Rule& rule : rules) {
        const auto value = m_permissions.value(section, rule.privilege);
        const bool granted = value && parseInt32(*value).value_or(0) != 0;
        if (rule.button)
            rule.button->setEnabled(granted);
        rule.entry->setEnabled(granted);
    }
}

std::optional<bool> ProfileControls::isGranted(std::string_view privilege) const
{
    if (m_permissions.isSuper)
        return true;
    const auto value = m_permissions.value(section, privilege);
    if (value == "1")
        return true;
    if (value == "0")
        return false;
    return {};
}

void ProfileControls::apply(const RowState& row)
{
    applyPrivileges();
    if (!row.isSelected) {
        const Controls& c = m_controls;
        for (ImageButton* button : {c.cmdAttach, c.cmdDetach, c.cmdStart, c.cmdStop, c.cmdModify})
            button->setEnabled(false);
        for (QAction* entry : {c.mnuAttach, c.mnuDetach, c.mnuStart, c.mnuStop, c.mnuMode, c.mnuModify, c.mnuDelete})
            entry->setEnabled(false);
        return;
    }
    applyStartStop(row);
    applyAttachDetach(m_controls.cmdAttach, m_controls.mnuAttach, attachProfiles, !row.isHosting);
    applyAttachDetach(m_controls.cmdDetach, m_controls.mnuDetach, detachProfiles, row.isHosting);
}

void ProfileControls::applyStartStop(const RowState& row)
{
    if (!row.hasStartPlugin) {
        setShown(m_controls.cmdStart, false, false);
        setShown(m_controls.cmdStop, false, false);
    } else if (!row.isStartable) {
        setShown(m_controls.cmdStart, !row.isHosting, false);
        setShown(m_controls.cmdStop, row.isHosting, false);
    } else {
        if (const auto granted = isGranted(startGame))
            setShown(m_controls.cmdStart, !row.isHosting, *granted);
        if (const auto granted = isGranted(stopGame))
            setShown(m_controls.cmdStop, row.isHosting, *granted);
    }
    // The entries offer what the buttons do.
    m_controls.mnuStart->setEnabled(isUsable(m_controls.cmdStart));
    m_controls.mnuStop->setEnabled(isUsable(m_controls.cmdStop));
}

void ProfileControls::applyAttachDetach(ImageButton* button, QAction* entry, std::string_view privilege, bool shown)
{
    const auto granted = isGranted(privilege);
    if (!granted)
        return;
    setShown(button, shown, *granted);
    entry->setEnabled(shown && *granted);
}
