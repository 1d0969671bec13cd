#pragma once

#include "updates/UpdatesIni.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;

/// What client and updater remember of updates between two starts, in "\settings\updates.ini". No update can write
/// there. Everything that reads takes a damaged file for an empty one; what writes throws RuntimeErrors from the disk.
class UpdateState
{
public:
    /// @param folder  outlives this
    explicit UpdateState(const AppFolder& folder) : m_folder(folder) {}

    /// The highest serial of a manifest that has been seen from a key; 0 for none.
    std::uint64_t highestSerial(std::string_view key) const;
    void noteSerial(std::string_view key, std::uint64_t serial) const;

    /// Checksums of the files that wait, by name, as they were when they arrived.
    std::map<std::string, std::string> digests() const;
    void noteDigest(std::string_view name, std::string_view digest) const;

    /// Files that the last update brought where there was none before.
    std::vector<WaitingFile> added() const;
    /// @param file  not among them yet
    void noteAdded(const WaitingFile& file) const;

    /// How far the hand-over of what waits has come.
    enum class HandOver {
        None,    ///< nothing has been tried with what waits now
        Started, ///< the updater was started and has not reported back
        Told,    ///< as above, and the user knows
    };
    HandOver handOver() const;
    void noteHandOver(HandOver state) const;

    /// Whether a set has been swapped in with which the program has not started yet.
    bool isOnTrial() const;
    void noteTrial(bool isOnTrial) const;

    /// Forgets the checksums of what waited.
    void forgetDigests() const;
    /// Forgets what the last update added.
    void forgetAdded() const;

private:
    std::string value(std::string_view section, std::string_view key) const;
    void set(std::string_view section, std::string_view key, std::string_view value) const;
    void remove(std::string_view section) const;

    const AppFolder& m_folder;
};
