#pragma once

#include "profiles/editor/FieldFault.h"
#include "profiles/editor/ProfileSettings.h"
#include "profiles/editor/ServerForm.h"

#include <QWidget>

#include <optional>

class CodePage;
class PictureStore;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;

/// The settings of a profile, as they were read and as the user changes them. The form knows no request and fetches no
/// page: what it shows is handed to it, and it gives back what was made of that.
class ProfileForm : public QWidget
{
    Q_OBJECT

public:
    /// Code page and pictures outlive the form.
    ProfileForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent);

    /// Empties the name, the scripts and the entry being typed, and sets the host's name and the left leaning players
    /// back; the rest keeps what it shows.
    void clear();
    /// Shows `settings` as those that were read.
    void showSettings(const ProfileSettings& settings);
    /// What is shown is from now on what was read, as `settings`.
    void takeAsRead(const ProfileSettings& settings);
    /// The settings that were read, with what the user has changed in them.
    ProfileSettings changed() const;
    /// Whether there is something of the user's that was not saved, an entry half typed included.
    bool isChanged() const;
    QString profileName() const;
    /// The first reason why the settings cannot be sent; nothing when they can.
    std::optional<FieldFault> fault() const;
    /// The script entry being typed, for the statistics system that is chosen.
    Script script() const;

    /// The frame in which scripts are added.
    ServerForm& server() const { return *fmeServer; }
    /// Gives the keyboard to the first field.
    void takeKeyboard();

private:
    void buildProfile();
    void buildPadding();
    void buildMisc();
    void layOut();
    void showSystems(const ProfileSettings& settings);
    ProfileSettings typed() const;
    std::string bytesOf(const QLineEdit* field) const;

    const CodePage& m_codePage;
    ProfileSettings m_read;  ///< as the tracker sent them
    ProfileSettings m_shown; ///< the same as the form shows them

    QGroupBox* fmeProfile = nullptr;
    QLineEdit* txtName = nullptr;
    QComboBox* cboStats = nullptr;
    ServerForm* fmeServer = nullptr;
    QGroupBox* fmePadding = nullptr;
    QCheckBox* chkAntiStatsPad = nullptr;
    QLineEdit* txtPadnum = nullptr;
    QLineEdit* txtPadtime = nullptr;
    QGroupBox* fmeMisc = nullptr;
    QComboBox* cboLL = nullptr;
    QCheckBox* chkAra = nullptr;
    QCheckBox* chkRbm = nullptr;
    QCheckBox* chkAcs = nullptr;
};
