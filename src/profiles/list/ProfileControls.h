#pragma once

#include <optional>
#include <string>
#include <string_view>

class ImageButton;
class QAction;
struct Permissions;

/// What the selected row says, as far as the controls depend on it.
struct RowState
{
    bool isSelected = false;     ///< there is a row at all
    bool isHosting = false;      ///< its map is not empty
    bool isStartable = false;    ///< its game version is one that the game-start plugin can start
    bool hasStartPlugin = false; ///< the game-start plugin is loaded and enabled
};

/// Shows, hides, enables and disables the controls of the profile list by privilege and hosting state.
class ProfileControls
{
public:
    /// Buttons and menu entries belong to the profile list, which outlives this.
    struct Controls
    {
        ImageButton* cmdAttach;
        ImageButton* cmdDetach;
        ImageButton* cmdStart;
        ImageButton* cmdStop;
        ImageButton* cmdModify;
        QAction* mnuAttach;
        QAction* mnuDetach;
        QAction* mnuStart;
        QAction* mnuStop;
        QAction* mnuMode;
        QAction* mnuModify;
        QAction* mnuDelete;
    };

    ProfileControls(const Controls& controls, const Permissions& permissions);

    /// The state in which every login finds the window.
    void reset();
    /// What the account may do at all, and of that what the selected row leaves.
    void apply(const RowState& row);

private:
    void applyPrivileges();
    void applyStartStop(const RowState& row);
    void applyAttachDetach(ImageButton* button, QAction* entry, std::string_view privilege, bool shown);
    /// true for "1" and super accounts, false for "0", nothing for anything else.
    std::optional<bool> isGranted(std::string_view privilege) const;

    Controls m_controls;
    const Permissions& m_permissions;
};
