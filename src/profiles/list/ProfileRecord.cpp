#include "profiles/list/ProfileRecord.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::size_t recordFields = 12; // those of a record, and what stands behind them

} // namespace

ProfileRecord decodeProfileRecord(std::string_view element)
{
    const FieldList fields(base64::decode(trimmed(element)), '|', recordFields);
    ProfileRecord record{
        .id = std::string(fields.at(0)),
        .name = std::string(fields.at(1)),
        .modPicture = std::string(fields.at(2)),
        .players = std::string(fields.at(3)),
        .map = base64::decode(fields.at(4)),
        .gameType = std::string(fields.at(5)),
        .timer = std::string(fields.at(6)),
        .statusText = std::string(fields.at(8)), // field 7 carries nothing that is shown
        .status = toInt32(fields.at(9)),
        .gameVersion = std::string(fields.at(10)),
    };
    // Rooms know a profile by the number or by its text: both must name the same one.
    if (record.id != std::to_string(toInt32(record.id)))
        throw RuntimeError(ErrorNumber::TypeMismatch, "profile id");
    return record;
}

ProfileElements splitProfilesReply(std::string_view body, std::size_t most)
{
    // One name in front, and the rest behind those that are taken.
    std::vector<std::string_view> elements = split(body, '_', most + 2);
    const std::size_t last = body.rfind('_');
    ProfileElements found;
    if (last == std::string_view::npos)
        return found;
    found.isCut = elements.back().find('_') != std::string_view::npos;
    elements.pop_back();
    const std::vector<std::string_view> pictures = split(body.substr(last + 1), '|', most + 1);
    for (std::size_t index = 1; index < elements.size(); ++index) {
        if (trimmed(elements[index]).empty())
            continue;
        const std::size_t position = index - 1;
        found.profiles.push_back(
            {elements[index], position < pictures.size() ? pictures[position] : std::string_view()});
    }
    return found;
}

std::string decodePictureBytes(std::string_view entry)
{
    std::string bytes;
    bytes.reserve(entry.size() / 2);
    std::size_t start = 0;
    for (std::size_t end = entry.find('/'); end != std::string_view::npos; end = entry.find('/', start)) {
        const std::string_view piece = entry.substr(start, end - start);
        start = end + 1;
        if (piece.empty())
            continue;
        const std::int32_t value = toInt32(piece);
        if (value < 0 || value > 255)
            throw RuntimeError(ErrorNumber::Overflow, "a picture byte is not between 0 and 255");
        bytes += static_cast<char>(value);
    }
    return bytes;
}

Request getProfilesRequest(std::string_view user, const std::vector<std::string>& heldPictures)
{
    return {"GetProfiles", "GetProfiles_" + std::string(user) + '_' + base64::encode(join(heldPictures, "|")), {}};
}

std::uint32_t playersIn(const ProfileRecord& record)
{
    std::uint32_t count = 0;
    for (const char digit : trimmed(record.players)) {
        if (digit < '0' || digit > '9')
            break;
        count = std::min(count * 10 + static_cast<std::uint32_t>(digit - '0'), mostPlayers);
    }
    return count;
}

ChosenProfile chosen(const ProfileRecord& record)
{
    return {toInt32(record.id), record.name, record.gameVersion, record.status};
}
