#include "CoreSubjects.h"

#include "References.h"
#include "base/Base64.h"
#include "link/ReplyAssembler.h"
#include "live/statistics/StatisticsRows.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <string>

namespace {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;

std::string randomBytes(std::size_t count)
{
    std::mt19937 random(2);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

using Codec = std::string (*)(std::string_view);

template <Codec encode>
std::function<bool()> encoding(std::size_t size)
{
    return [bytes = randomBytes(size)] { return encode(bytes).size() == (bytes.size() + 2) / 3 * 4; };
}

template <Codec decode>
std::function<bool()> decoding(std::size_t size)
{
    return [text = reference::encodePairs(randomBytes(size)), size] { return decode(text).size() == size; };
}

constexpr std::string_view endMark = "[ND]";

/// A reply as it travels: its length in seven digits or more, and one message.
std::string framed(const std::string& body)
{
    const std::string message = "[ST]" + body + std::string(endMark);
    const std::string length = std::to_string(message.size());
    return std::string(7 - std::min<std::size_t>(length.size(), 7), '0') + length + message;
}

std::string binaryReply(std::size_t size)
{
    std::string bytes = randomBytes(size);
    for (std::size_t at = bytes.find(endMark); at != std::string::npos; at = bytes.find(endMark, at))
        bytes[at] = ' ';
    return framed(bytes);
}

std::string base64Reply(std::size_t size)
{
    return framed(reference::encodePairs(randomBytes(size / 4 * 3)));
}

/// Hands over what a socket has ready at a time.
template <typename Take>
void eachChunk(std::string_view whole, Take&& take)
{
    constexpr std::size_t chunkBytes = 64 * kibibyte;
    for (std::size_t at = 0; at < whole.size(); at += chunkBytes)
        take(whole.substr(at, chunkBytes));
}

using MakeReply = std::string (*)(std::size_t);

/// The same reply again and again over one link.
template <MakeReply make>
std::function<bool()> gathering(std::size_t size)
{
    return [whole = make(size), size, assembler = std::make_shared<ReplyAssembler>()] {
        eachChunk(whole, [&assembler](std::string_view chunk) { assembler->add(chunk); });
        std::optional<Reply> reply = assembler->take();
        const bool isWhole = reply && reply->text.size() > size;
        if (isWhole)
            assembler->reuse(std::move(reply->text));
        return isWhole;
    };
}

template <MakeReply make, bool looksForFailure>
std::function<bool()> plainGathering(std::size_t size)
{
    return [whole = make(size), gatherer = std::make_shared<reference::Gatherer>(looksForFailure)] {
        eachChunk(whole, [&gatherer](std::string_view chunk) { gatherer->add(chunk); });
        return gatherer->take() == whole.size();
    };
}

std::string joined(const std::vector<std::string>& parts, char separator)
{
    std::string text;
    for (const std::string& part : parts)
        text.append(&part == parts.data() ? 0 : 1, separator).append(part);
    return text;
}

/// A "GetPlayerStats" reply as a tracker tells of players, without weapons.
std::string statisticsReply(std::size_t players)
{
    constexpr std::size_t fieldCount = 26;
    const auto encode = reference::encodePairs;
    std::vector<std::string> records;
    std::vector<std::string> statistics;
    for (std::size_t player = 0; player < players; ++player) {
        const std::string name = "[TF] Player " + std::to_string(player);
        const std::string identity = "4D41" + std::to_string(100000 + player);
        const std::string place = '_' + std::to_string(player) + '_' + std::to_string(player % 2 + 1) + '_';
        records.push_back(encode(encode(name).append(place).append(encode(identity)).append("_0")));
        std::vector<std::string> fields(fieldCount, "0");
        for (const std::size_t field : {2, 3, 9, 14, 23, 24, 25})
            fields[field] = std::to_string(player * 7 % 1000 * field % 4000);
        statistics.push_back(encode(std::string(name).append(place).append(identity)) + '_' +
                             encode(joined(fields, '_')));
    }
    return joined(records, '|') + "[-][-]" + joined(statistics, '|') + "[-][-]";
}

std::function<bool()> statistics(std::size_t players)
{
    return [body = statisticsReply(players), players] {
        PlayerStatistics statistics;
        statistics.read(body);
        std::vector<PlayerRow> rows;
        rows.reserve(statistics.players().size());
        for (std::size_t index = 0; index < statistics.players().size(); ++index)
            rows.push_back(playerRow(statistics, index, GameFamily::DeltaForce));
        return rows.size() == players;
    };
}

std::function<bool()> statisticsInOnePass(std::size_t players)
{
    return [body = statisticsReply(players), players, pass = std::make_shared<reference::Statistics>()] {
        return pass->read(body) > 0 && pass->records().size() == 2 * players;
    };
}

} // namespace

const std::vector<CoreSubject>& coreSubjects()
{
    static const std::vector<std::size_t> textSizes = {64, kibibyte, mebibyte};
    static const std::vector<std::size_t> binarySizes = {16 * mebibyte};
    static const std::vector<std::size_t> replySizes = {mebibyte, 16 * mebibyte};
    static const std::vector<std::size_t> playerCounts = {50, 10000};
    static const std::vector<CoreSubject> subjects = {
        {"Base64 encode: ours", encoding<base64::encode>, textSizes},
        {"Base64 encode: plain table", encoding<reference::encodePlain>, textSizes},
        {"Base64 encode: table of pairs", encoding<reference::encodePairs>, textSizes},
        {"Base64 decode: ours", decoding<base64::decode>, textSizes},
        {"Base64 decode: plain table", decoding<reference::decodePlain>, textSizes},
        {"gathering binary: ours", gathering<binaryReply>, binarySizes},
        {"gathering binary: one search", plainGathering<binaryReply, false>, binarySizes},
        {"gathering binary: two searches", plainGathering<binaryReply, true>, binarySizes},
        {"gathering Base64: ours", gathering<base64Reply>, replySizes},
        {"gathering Base64: one search", plainGathering<base64Reply, false>, replySizes},
        {"gathering Base64: two searches", plainGathering<base64Reply, true>, replySizes},
        {"statistics: ours", statistics, playerCounts},
        {"statistics: one pass", statisticsInOnePass, playerCounts},
    };
    return subjects;
}
