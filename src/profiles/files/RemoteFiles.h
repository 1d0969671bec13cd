#pragma once

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "link/Request.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A kind of files that the tracker keeps for each profile.
struct RemoteFileType
{
    std::string_view name;   ///< shown, and what the tracker is asked for
    std::string_view folder; ///< on the host, with a backslash at both ends
    bool isBackup = false;   ///< its files lie in a folder for each game type
};

/// In the order in which they are offered.
inline constexpr std::array<RemoteFileType, 7> remoteFileTypes{{
    {"Admin Logs", "\\adminlogs\\"},
    {"Backup Files", "\\Backups\\", true},
    {"Chat Logs", "\\messagelogs\\"},
    {"Server Message Logs", "\\messagelogs\\"},
    {"Player Logs", "\\misclogs\\"},
    {"Status Logs", "\\misclogs\\"},
    {"Import Logs", "\\misclogs\\"},
}};

/// Which files of a profile are to be listed.
struct FileChoice
{
    const RemoteFileType* type = nullptr; ///< one of `remoteFileTypes`
    std::string from;                     ///< the first day, as `travelDate` makes it
    std::string to;                       ///< the last one

    bool operator==(const FileChoice&) const = default;
};

/// One file as the tracker lists it. Names are data of the host, never paths of this machine.
struct RemoteFile
{
    std::string name;
    std::string gameType; ///< of backups only
    std::string date;     ///< as the tracker writes it
    std::string size;     ///< as the tracker writes it

    bool operator==(const RemoteFile&) const = default;
};

/// The first entries of an expanded "GetFileList" text; empty ones are left out. Views into `text`.
std::vector<std::string_view> splitFileList(std::string_view text, std::size_t most);

/// @param entry  file name, for backups game type, file date and file size, joined by "|"
/// @throws RuntimeError SubscriptOutOfRange for fewer fields
RemoteFile decodeRemoteFile(std::string_view entry, const RemoteFileType& type);

struct PackedReply;

/// What a "GetFileList" reply brought, as far as it could be read and is not cut.
struct RemoteFileList
{
    std::vector<RemoteFile> files = {};
    bool isCut = false;
    std::optional<RuntimeError> damage; ///< what ended the list
};

/// Never throws, so that it can run in another thread.
RemoteFileList readFileList(const PackedReply& packed, const RemoteFileType& type, const Bounds& bounds);

/// What a file is, by the ending of its name; empty for an ending that is not known.
std::string_view fileTypeText(std::string_view fileName);

/// Folder and name of a file on the host.
std::string remotePath(const RemoteFileType& type, const RemoteFile& file);

/// A date as it travels: DD/MM/YYYY.
std::string travelDate(int day, int month, int year);

/// @param choice  has a type
Request getFileListRequest(std::string_view user, std::int32_t profileId, const FileChoice& choice);

/// @param path  as `remotePath` makes it
Request getRemFileRequest(std::string_view user, std::int32_t profileId, std::string_view path);
