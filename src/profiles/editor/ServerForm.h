#pragma once

#include "profiles/editor/FieldFault.h"
#include "profiles/editor/ProfileSettings.h"
#include "profiles/editor/ScriptAddress.h"
#include "profiles/editor/ScriptCheck.h"

#include <QGroupBox>

#include <optional>
#include <string>
#include <vector>

class CodePage;
class ImageButton;
class PictureStore;
class QAction;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;

/// The frame with a profile's scripts and its host's name. A script joins the list by an entry that the user types and
/// the window checks; how the check goes is told beside it.
class ServerForm : public QGroupBox
{
    Q_OBJECT

public:
    /// What the window is waiting for.
    enum class Waiting { Nothing, Tracker, Scripts };

    /// Code page and pictures outlive the form.
    ServerForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent);

    /// Empties the entry being typed, shows no scripts and the usual host's name.
    void clear();
    /// Shows the scripts and the host's name. The entry being typed stays.
    void showSettings(const ProfileSettings& settings);
    std::vector<std::string> scripts() const;
    std::string hostName() const;
    /// Why the host's name cannot be sent; nothing when it can.
    std::optional<FieldFault> fault() const;

    /// Whether an entry has been typed, or a part of one.
    bool hasEntry() const;
    /// The entry being typed. Its address is as it was typed; the server id has no blanks around it.
    /// @param system  the statistics system that it is for
    Script entry(std::string system) const;
    /// Why the entry cannot be checked; nothing when it can.
    /// @param script  the entry, its address made well-formed, or emptied where it cannot be
    std::optional<FieldFault> fault(const Script& script) const;
    /// What a check found wrong with the entry; nothing when it can join, or was not checked to the end.
    std::optional<FieldFault> fault(ScriptFinding finding) const;
    /// Adds to the scripts what was typed, and makes room for the next entry.
    void add(const Script& script);

    /// Says something beside the entry, with an address cut to the line below.
    void note(const QString& text, const QString& address = {});
    /// Shows what is waited for. No entry is taken meanwhile.
    void showWaiting(Waiting waiting);

Q_SIGNALS:
    /// The entry being typed is to be checked and added.
    void addWanted();
    /// The check is to be stopped.
    void stopWanted();

private:
    void buildList();
    void buildEntry(PictureStore& pictures);
    void layOut();
    void layOutCheck(QGridLayout* entry);
    void wireSignals();
    void clearEntry();
    void removeScript();
    void followSelection();
    std::string bytesOf(const QLineEdit* field) const;
    std::optional<FieldFault> foreignIn(QLineEdit* field) const;

    const CodePage& m_codePage;

    QListWidget* lstUrls = nullptr;
    QAction* mnuRemove = nullptr;
    QLineEdit* txtUrl = nullptr;
    QLineEdit* txtServerid = nullptr;
    ImageButton* cmdAddurl = nullptr;
    QLabel* lblCheck = nullptr; ///< what is going on, or what became of it
    QProgressBar* pbCheck = nullptr;
    ImageButton* cmdStopCheck = nullptr;
    QLineEdit* txtSrHost = nullptr;
};
