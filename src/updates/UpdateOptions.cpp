#include "updates/UpdateOptions.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "link/LinkKeeper.h"
#include "link/clsWinSock.h"
#include "login/KeptPasswords.h"
#include "platform/components/Component.h"
#include "platform/system/CodePage.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateServices.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view settingsFile = "\\settings\\config.ini";
constexpr std::string_view updateSection = "Settings";
constexpr std::string_view ownSection = "Program";
constexpr std::string_view makerHostKey = "MakerHost";
constexpr std::array locationPaths{"/downloads/QRVV3/rc/", "/Quorvane/qrvrc/"};

/// Addresses and keys are stored as UTF-8, whatever code page the host has.
QString fromFile(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string forFile(const QString& text)
{
    return text.toUtf8().toStdString();
}

struct ReportWord
{
    ReportMode mode;
    std::string_view word;
};

/// As they are stored; the first stands for what is missing or unknown.
constexpr std::array reportWords{
    ReportWord{ReportMode::ByThemselves, "Sent"},
    ReportWord{ReportMode::AskedFor, "Ask"},
    ReportWord{ReportMode::Never, "Never"},
};

ReportMode reportModeOf(std::string_view word)
{
    const auto found = std::find_if(reportWords.begin(), reportWords.end(),
                                    [word](const ReportWord& known) { return known.word == word; });
    return found == reportWords.end() ? reportWords.front().mode : found->mode;
}

std::string_view wordOf(ReportMode mode)
{
    return std::find_if(reportWords.begin(), reportWords.end(),
                        [mode](const ReportWord& known) { return known.mode == mode; })
        ->word;
}

/// What is stored of the user's preferences, in the program's own section.
struct Tick
{
    std::string_view key;
    bool& (*of)(Preferences& preferences);
};

constexpr std::array ticks{
    Tick{"Reconnect", [](Preferences& likes) -> bool& { return likes.reconnects; }},
    Tick{"AskBeforeDetach", [](Preferences& likes) -> bool& { return likes.asksBefore.detach; }},
    Tick{"AskBeforeStop", [](Preferences& likes) -> bool& { return likes.asksBefore.stopGame; }},
    Tick{"AskBeforeKick", [](Preferences& likes) -> bool& { return likes.asksBefore.kick; }},
    Tick{"AskBeforeDeleteAccount", [](Preferences& likes) -> bool& { return likes.asksBefore.deleteAccount; }},
};

struct StoredPause
{
    std::string_view key;
    std::chrono::seconds Preferences::*of;
};

constexpr std::array storedPauses{
    StoredPause{"ListRefresh", &Preferences::listRefresh},
    StoredPause{"PlayerRefresh", &Preferences::playerRefresh},
};

Preferences readPreferences(const IniText& text)
{
    Preferences likes;
    for (const Tick& tick : ticks)
        tick.of(likes) = text.value(ownSection, tick.key) == "1";
    for (const StoredPause& pause : storedPauses) {
        const auto seconds = parseInt32(text.value(ownSection, pause.key).value_or(std::string()));
        const auto known =
            std::find(refreshPauses.begin(), refreshPauses.end(), std::chrono::seconds(seconds.value_or(-1)));
        if (known != refreshPauses.end())
            likes.*pause.of = *known;
    }
    return likes;
}

void writePreferences(IniText& text, Preferences likes)
{
    for (const Tick& tick : ticks)
        text.setValue(ownSection, tick.key, tick.of(likes) ? "1" : "0");
    for (const StoredPause& pause : storedPauses)
        text.setValue(ownSection, pause.key, std::to_string((likes.*pause.of).count()));
}

/// @throws RuntimeError InvalidFileFormat for a damaged file
IniText storedSettings(const AppFolder& folder)
{
    const std::filesystem::path file = folder.path(settingsFile);
    return IniText(readBytesIfPresent(file, IniText::maxBytes).value_or(std::string()), bytesOf(file));
}

} // namespace

QString UpdateOptions::builtIn(int number) const
{
    QUrl url = m_subjects.services.makerHost;
    url.setPath(QString::fromLatin1(locationPaths.at(static_cast<std::size_t>(number - 1))));
    return url.toString();
}

bool UpdateOptions::isPackaged() const
{
    return m_subjects.services.isPackaged;
}

void UpdateOptions::load()
{
    m_values = OptionValues{.location = {}, .codePage = {}, .makerHost = {}, .updateKey = {}};
    if (m_subjects.folder.fileExists(settingsFile)) {
        const IniText text = storedSettings(m_subjects.folder);
        const auto own = [&text](std::string_view key) { return text.value(ownSection, key).value_or(std::string()); };
        m_values.location = fromFile(text.value(updateSection, "UpdateUrl").value_or(std::string()));
        if (m_values.location.isEmpty())
            m_values.location = builtIn(1);
        m_values.automatic = text.value(updateSection, "CheckForUpdates") == "1";
        if (const auto seconds = parseInt32(own("ReplyTimeout")))
            m_values.replyLimit = std::clamp(std::chrono::seconds(*seconds), minReplyLimit, maxReplyLimit);
        m_values.codePage = own("CodePage");
        m_values.makerHost = fromFile(own(makerHostKey));
        m_values.updateKey = fromFile(own("UpdateKey"));
        m_values.reports = reportModeOf(own("ErrorReports"));
        m_values.preferences = readPreferences(text);
        m_values.usesKeyring = own("Keyring") == "1";
    }
    putInForce();
    if (!keyInForce().empty() && !m_subjects.services.key) {
        m_subjects.services.location.clear(); // rather no updates than unproven ones
        throw RuntimeError(ErrorNumber::InvalidFileFormat, "UpdateKey");
    }
}

void UpdateOptions::save(const OptionValues& values)
{
    m_subjects.folder.makeFolder("\\settings");
    // All in one piece: half of the settings would be none that anybody chose.
    IniText text = storedSettings(m_subjects.folder);
    text.setValue(updateSection, "UpdateUrl", forFile(values.location));
    text.setValue(updateSection, "CheckForUpdates", values.automatic ? "1" : "0");
    text.setValue(ownSection, "ReplyTimeout", std::to_string(values.replyLimit.count()));
    text.setValue(ownSection, "CodePage", values.codePage);
    text.setValue(ownSection, makerHostKey, forFile(values.makerHost));
    text.setValue(ownSection, "UpdateKey", forFile(values.updateKey));
    text.setValue(ownSection, "ErrorReports", wordOf(values.reports));
    writePreferences(text, values.preferences);
    text.setValue(ownSection, "Keyring", values.usesKeyring ? "1" : "0");
    writeBytes(m_subjects.folder.path(settingsFile), text.bytes(), Access::OwnerOnly);
    m_values = values;
    putInForce();
}

bool UpdateOptions::isDamaged() const
{
    try {
        storedSettings(m_subjects.folder);
        return false;
    } catch (const RuntimeError& error) {
        return error.number() == ErrorNumber::InvalidFileFormat;
    }
}

void UpdateOptions::setDamagedAside()
{
    moveFile(m_subjects.folder.path(settingsFile), m_subjects.folder.path(std::string(settingsFile) + ".damaged"));
}

void UpdateOptions::setAutomatic(bool automatic)
{
    m_subjects.agent.setAutomatic(automatic);
}

std::string UpdateOptions::keyInForce() const
{
    return m_values.updateKey.isEmpty() ? m_subjects.services.builtInKey : forFile(m_values.updateKey);
}

void UpdateOptions::putInForce()
{
    m_subjects.services.location = m_values.location;
    m_subjects.services.key = UpdateKey::fromText(keyInForce());
    m_subjects.agent.setAutomatic(m_values.automatic);
    m_subjects.link.replyLimit = m_values.replyLimit;
    m_subjects.reporter.reports = m_values.reports;
    m_subjects.preferences = m_values.preferences;
    m_subjects.keeper.setOn(m_values.preferences.reconnects);
    m_subjects.passwords.use(m_values.usesKeyring);
    if (!m_subjects.codePage.use(m_values.codePage)) { // nobody has chosen one
        m_subjects.codePage = CodePage();
        m_values.codePage = m_subjects.codePage.name();
    }
    m_subjects.components.useCodePage(m_values.codePage);
}

std::string storedMakerHost(const AppFolder& folder)
{
    try {
        return storedSettings(folder).value(ownSection, makerHostKey).value_or(std::string());
    } catch (const RuntimeError&) {
        return {}; // told when the settings are loaded
    }
}
