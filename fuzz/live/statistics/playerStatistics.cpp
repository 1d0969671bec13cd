#include "live/statistics/StatisticsRows.h"

#include "Check.h"
#include "base/Base64.h"
#include "base/Text.h"

#include <algorithm>

namespace {

bool isRowError(std::optional<ErrorNumber> error)
{
    return isDecoderError(error) || error == ErrorNumber::InvalidProcedureCall;
}

bool isTime(const std::string& text)
{
    return text.size() >= 8 && text.find_first_not_of("0123456789:") == std::string::npos &&
           text[text.size() - 3] == ':' && text[text.size() - 6] == ':';
}

/// Every row is made or refused, whatever the records hold.
void checkRows(const PlayerStatistics& statistics, GameFamily family)
{
    std::vector<std::string> names{{}};
    for (std::size_t index = 0; index < statistics.players().size(); ++index) {
        PlayerRow row;
        const auto error = raisedBy([&] { row = playerRow(statistics, index, family); });
        check(!error || isRowError(error));
        if (error)
            continue;
        check(isTime(timeText(row.seconds)));
        names.push_back(row.name);
    }
    for (std::size_t index = 0; index < statistics.weapons().size(); ++index) {
        int owners = 0;
        for (const std::string& name : {names.front(), names.back()}) {
            std::optional<WeaponRow> row;
            const auto error = raisedBy([&] { row = weaponRow(statistics, index, family, name); });
            check(!error || isRowError(error));
            check(!row || row->position == index + 1);
            owners += row ? 1 : 0;
        }
        check(owners < 2 || names.front() == names.back());
    }
}

void checkReply(std::string_view body)
{
    PlayerStatistics statistics;
    const auto error = raisedBy([&] { statistics.read(body); });
    check(!error || isRowError(error));
    for (const GameFamily family : {GameFamily::DeltaForce, GameFamily::JointOperations, GameFamily::Other})
        checkRows(statistics, family);
}

/// Three lists of plain records, one record a line and an empty line between the lists; statistics begin with their key
/// and a TAB. Sent encoded, so that the records themselves are reached; they come back as they are.
void checkRecords(std::string_view input)
{
    std::vector<std::string> sections(1);
    std::vector<std::string> players;
    for (const std::string_view line : split(input, '\n')) {
        if (line.empty() && sections.size() < 3) {
            sections.emplace_back();
            continue;
        }
        const std::size_t middle = line.find('\t');
        std::string item = base64::encode(line.substr(0, middle));
        if (sections.size() == 2)
            item += '_' + base64::encode(middle == std::string_view::npos ? "" : line.substr(middle + 1));
        else if (sections.size() == 1 && !item.empty())
            players.emplace_back(line.substr(0, middle));
        sections.back().append(sections.back().empty() ? "" : "|").append(item);
    }
    sections.resize(3);
    const std::string body = join(sections, "[-][-]");
    PlayerStatistics statistics;
    check(!raisedBy([&] { statistics.read(body); }));
    check(std::ranges::equal(statistics.players(), players));
    checkReply(body);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkReply(input);
    checkRecords(input);
    return 0;
}
