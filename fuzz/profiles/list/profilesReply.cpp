#include "profiles/list/ProfileRecord.h"

#include "Check.h"
#include "base/Base64.h"
#include "base/Text.h"

#include <array>

namespace {

constexpr std::size_t fieldCount = 11;
constexpr std::size_t mapField = 4;
constexpr std::size_t statusField = 9;

void checkPicture(std::string_view entry)
{
    std::string bytes;
    const auto error = raisedBy([&] { bytes = decodePictureBytes(entry); });
    if (error) {
        check(error == ErrorNumber::TypeMismatch || error == ErrorNumber::Overflow);
        return;
    }
    std::vector<std::string_view> pieces = split(entry, '/');
    pieces.pop_back();
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    check(bytes.size() == pieces.size());
}

void checkReply(std::string_view body)
{
    for (const ProfileElement& element : splitProfilesReply(body, 1000).profiles) {
        check(liesIn(body, element.text) && liesIn(body, element.picture));
        check(!trimmed(element.text).empty() && element.text.find('_') == std::string_view::npos);
        check(element.picture.find_first_of("_|") == std::string_view::npos);
        const auto error = raisedBy([&] { decodeProfileRecord(element.text); });
        check(!error || isDecoderError(error));
        checkPicture(element.picture);
    }
}

/// A reply of one profile with these fields and this picture gives them back.
void checkRoundTrip(std::string_view text, std::string_view picture)
{
    std::vector<std::string> fields;
    for (const std::string_view field : split(text, '|'))
        fields.emplace_back(field);
    std::vector<std::string> encodedMap = fields;
    if (fields.size() > mapField)
        encodedMap[mapField] = base64::encode(fields[mapField]);
    std::string spelledOut;
    for (const char byte : picture)
        spelledOut += std::to_string(static_cast<unsigned char>(byte)) + '/';
    const std::string body = "Profiles_" + base64::encode(join(encodedMap, "|")) + '_' + spelledOut;

    const std::vector<ProfileElement> elements = splitProfilesReply(body, 1000).profiles;
    check(elements.size() == (text.empty() ? 0 : 1));
    if (elements.empty())
        return;
    check(decodePictureBytes(elements.front().picture) == picture);
    ProfileRecord record;
    const auto error = raisedBy([&] { record = decodeProfileRecord(elements.front().text); });
    if (fields.size() < fieldCount) {
        check(isDecoderError(error));
        return;
    }
    const std::optional<std::int32_t> status = parseInt32(fields[statusField]);
    const std::optional<std::int32_t> id = parseInt32(fields.front());
    check(error.has_value() != (status && id && std::to_string(*id) == fields.front()));
    if (error)
        return;
    const std::array<std::string, fieldCount> got{
        record.id,    record.name, record.modPicture, record.players,      record.map,        record.gameType,
        record.timer, fields[7],   record.statusText, fields[statusField], record.gameVersion};
    check(std::equal(got.begin(), got.end(), fields.begin()));
    check(record.status == *status);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkReply(input);
    checkPicture(input);
    const auto error = raisedBy([&] { decodeProfileRecord(input); });
    check(!error || isDecoderError(error));
    const std::size_t end = std::min(input.find('\n'), input.size());
    checkRoundTrip(input.substr(0, end), input.substr(end));
    return 0;
}
