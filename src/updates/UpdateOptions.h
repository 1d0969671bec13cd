#pragma once

#include "client/Preferences.h"
#include "diagnostics/report/Reporter.h"

#include <QString>

#include <chrono>
#include <string>

class AppFolder;
class clsWinSock;
class CodePage;
class Components;
class KeptPasswords;
class LinkKeeper;
class QUrl;
class UpdateAgent;
struct UpdateServices;

/// The settings that the options window shows.
struct OptionValues
{
    QString location; ///< the update location; empty when none is in force
    bool automatic = false;
    std::chrono::seconds replyLimit{60}; ///< how long the host may be silent
    std::string codePage;                ///< of the host, one that `CodePageMap` knows
    QString makerHost;                   ///< empty for the one that is built in; counts from the next start on
    QString updateKey; ///< public key of the update location; empty for the one that is built in, if any
    ReportMode reports = ReportMode::ByThemselves;
    Preferences preferences = {};
    bool usesKeyring = false; ///< for the passwords of connection profiles

    bool operator==(const OptionValues&) const = default;
};

inline constexpr std::chrono::seconds minReplyLimit{5};
inline constexpr std::chrono::seconds maxReplyLimit{3600};

/// Reads the settings at the start and puts them in force, then and when they are changed.
class UpdateOptions
{
public:
    /// What the settings act on. All outlive the options.
    struct Subjects
    {
        const AppFolder& folder;
        UpdateServices& services;
        UpdateAgent& agent;
        clsWinSock& link;
        CodePage& codePage;
        Components& components;
        Reporter& reporter;
        LinkKeeper& keeper;
        Preferences& preferences;
        KeptPasswords& passwords;
    };

    explicit UpdateOptions(Subjects subjects) : m_subjects(subjects) {}

    /// Puts what is stored in force; without stored settings there is no update location.
    /// @throws RuntimeError InvalidFileFormat for a damaged file
    void load();
    /// Stores the settings and puts them in force. @throws RuntimeError from the disk; nothing is in force then
    void save(const OptionValues& values);
    /// Whether there are stored settings that cannot be read, which keeps new ones from being stored.
    bool isDamaged() const;
    /// Keeps them aside as "config.ini.damaged". @throws RuntimeError from the disk
    void setDamagedAside();
    /// Turns the check by the clock on or off without storing it.
    void setAutomatic(bool automatic);

    const OptionValues& values() const { return m_values; }
    /// Whether the system's package manager keeps the program current.
    bool isPackaged() const;
    /// Where passwords are kept; there may be a keyring or not.
    KeptPasswords& passwords() { return m_subjects.passwords; }
    /// One of the two built-in update locations.
    QString builtIn(int number) const;

private:
    std::string keyInForce() const;
    void putInForce();

    Subjects m_subjects;
    OptionValues m_values;
};

/// The maker host that is stored in the options; empty for none.
std::string storedMakerHost(const AppFolder& folder);
