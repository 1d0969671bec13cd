#include "profiles/files/RemoteFiles.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "link/PackedReply.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::string_view entrySeparator = "||";
constexpr std::size_t endingLength = 4; // characters
constexpr std::size_t entryFields = 5;  // those of a backup, and what stands behind them

std::string twoDigits(int number)
{
    return std::string(number < 10 ? "0" : "").append(std::to_string(number));
}

} // namespace

std::vector<std::string_view> splitFileList(std::string_view text, std::size_t most)
{
    std::vector<std::string_view> entries;
    while (!text.empty() && entries.size() < most) {
        const std::size_t end = std::min(text.find(entrySeparator), text.size());
        if (end > 0)
            entries.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + entrySeparator.size(), text.size()));
    }
    return entries;
}

RemoteFileList readFileList(const PackedReply& packed, const RemoteFileType& type, const Bounds& bounds)
{
    RemoteFileList list;
    try {
        const ListText text = expandList(packed, entrySeparator, bounds.listBytes);
        std::vector<std::string_view> entries = splitFileList(text.text, bounds.listRows + 1);
        list.isCut = text.isCut || entries.size() > bounds.listRows;
        entries.resize(std::min(entries.size(), bounds.listRows));
        for (const std::string_view entry : entries)
            list.files.push_back(decodeRemoteFile(entry, type));
    } catch (const RuntimeError& error) {
        list.damage = error;
    } catch (const std::bad_alloc&) {
        list = {.damage = RuntimeError(ErrorNumber::OutOfMemory, "list of files")};
    }
    return list;
}

RemoteFile decodeRemoteFile(std::string_view entry, const RemoteFileType& type)
{
    const FieldList fields(std::string(entry), '|', entryFields);
    const std::size_t behindName = type.isBackup ? 2 : 1;
    return {
        .name = std::string(fields.at(0)),
        .gameType = std::string(type.isBackup ? fields.at(1) : ""),
        .date = std::string(fields.at(behindName)),
        .size = std::string(fields.at(behindName + 1)),
    };
}

std::string_view fileTypeText(std::string_view fileName)
{
    const std::string_view ending = fileName.substr(fileName.size() - std::min(fileName.size(), endingLength));
    if (equalsIgnoringCase(ending, ".txt"))
        return "Text Document";
    return equalsIgnoringCase(ending, ".bma") ? "Archived File" : "";
}

std::string remotePath(const RemoteFileType& type, const RemoteFile& file)
{
    std::string path(type.folder);
    if (type.isBackup)
        path.append(file.gameType).append("\\");
    return path + file.name;
}

std::string travelDate(int day, int month, int year)
{
    return twoDigits(day) + '/' + twoDigits(month) + '/' + std::to_string(year);
}

Request getFileListRequest(std::string_view user, std::int32_t profileId, const FileChoice& choice)
{
    return {"GetFileList", "GetFileList_" + std::string(user),
            join({std::to_string(profileId), std::string(choice.type->name), choice.from, choice.to}, "|")};
}

Request getRemFileRequest(std::string_view user, std::int32_t profileId, std::string_view path)
{
    return {"GetRemFile", "GetRemFile_" + std::string(user), std::to_string(profileId) + '|' + base64::encode(path)};
}
