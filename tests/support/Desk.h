#pragma once

#include "app/qrvrcMain.h"
#include "practice/links/SupportSide.h"
#include "practice/links/Tracker.h"
#include "support/Pane.h"
#include "support/RecordingDialogs.h"

#include <QTemporaryDir>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>

class QAbstractItemModel;

/// The whole client on a folder of its own, beside a practice tracker on loopback, used through its controls as a user
/// does. Nobody takes its error reports unless a maker host is set.
class Desk
{
public:
    explicit Desk(practice::World world = practice::World::small());
    ~Desk();

    RecordingDialogs boxes;
    practice::Tracker tracker;
    practice::SupportSide operatorSide;                   ///< at the port that the tracker announces
    QUrl makerHost{QStringLiteral("http://127.0.0.1:1")}; ///< of the next open(); nobody is there
    bool hasRealBoxes = false;        ///< instead of those that are written down; of the next open()
    Bounds bounds;                    ///< of the next open()
    std::shared_ptr<Keyring> keyring; ///< of the next open()
    std::chrono::milliseconds keyringLimit = std::chrono::seconds(10);
    SupportDesk::Limits limits; ///< of the next open()

    /// Makes the frame as a start of the program does, and shows it.
    /// @return what the start says about going on
    bool open();
    qrvrcMain& frame() { return *m_frame; }
    ClientCore& core() { return m_frame->core(); }
    clsWinSock& link() { return core().link; }

    std::filesystem::path path(const char* layoutName) const;
    /// Makes the file hold `bytes`; its folder is made too.
    void put(const char* layoutName, const QByteArray& bytes) const;
    /// Empty when there is no such file.
    QByteArray bytesOf(const char* layoutName) const;
    bool exists(const char* layoutName) const { return std::filesystem::exists(path(layoutName)); }

    /// A window of the frame, for names that others have too.
    Pane in(const QString& window) { return Pane(control(window)); }
    // Controls wherever in the frame, as a Pane has them.
    template <typename Control = QWidget>
    Control& control(const QString& name)
    {
        return all().control<Control>(name);
    }
    void click(const QString& name) { all().click(name); }
    void clickTab(const QString& strip, const QString& caption) { all().clickTab(strip, caption); }
    void type(const QString& field, const QString& text) { all().type(field, text); }
    QString text(const QString& name) { return all().text(name); }
    QStringList tabs(const QString& strip) { return all().tabs(strip); }
    /// What the login window says of the link.
    QString linkStatus();

    /// Types a new connection profile into the login window. The host is this machine.
    void typeProfile(const QString& name, const QString& user, const QString& password, quint16 port);
    /// Chooses a saved connection profile with the keyboard.
    void chooseProfile(const QString& name) { all().choose(QStringLiteral("cboProfile"), name); }
    /// Opens the client if need be, logs in by way of a new connection profile, and waits until the profile list stands
    /// still: its own refresh by the clock is off, so that requests come only from what a test does.
    /// @param user  also the password
    /// @return whether the profile list was reached
    bool logIn(const QString& user = QStringLiteral("admin"));

    QAbstractItemModel& grid();
    /// Texts of one column of the profile list, from top to bottom.
    QStringList column(int column) { return all().column(QStringLiteral("fgProfiles"), column); }
    /// Selects a profile by a click on its row.
    void clickRow(int row) { all().clickRow(QStringLiteral("fgProfiles"), row); }
    /// Lets the profile list follow the tracker by the clock once.
    /// @return whether it asked and has its answer
    bool refreshQuietly();
    /// Lets something happen while the next request of that name waits for its answer.
    void beforeAnswer(const QByteArray& request, std::function<void()> meanwhile);
    /// Waits until no request is under way.
    bool settles();
    /// Whether `act` leads to a request of that name, at once or in a while, and the request to an answer.
    bool answered(const QByteArray& request, const std::function<void()>& act);

    /// The newest request of that name; empty when there was none.
    QByteArray lastRequest(const QByteArray& name) const;
    qsizetype requestCount(const QByteArray& name) const;

private:
    Pane all() { return Pane(*m_frame); }

    QTemporaryDir m_folder;
    std::unique_ptr<qrvrcMain> m_frame;
};
