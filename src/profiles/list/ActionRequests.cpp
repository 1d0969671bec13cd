#include "profiles/list/ActionRequests.h"

#include "base/Base64.h"
#include "base/Text.h"

namespace {

constexpr std::size_t processFields = 3; // those of a process, and what stands behind them

Request actionRequest(std::string name, std::string_view user, std::string tail)
{
    std::string head = name + '_' + std::string(user);
    return {std::move(name), std::move(head), std::move(tail)};
}

} // namespace

ProcessRecord decodeProcess(std::string_view element)
{
    const FieldList fields(base64::decode(trimmed(element)), '|', processFields);
    return {.id = std::string(fields.at(0)), .name = std::string(fields.at(1))};
}

bool isAttachOutcome(std::string_view body)
{
    const std::string_view outcome = trimmed(body);
    return outcome == "True" || outcome == "False";
}

std::vector<std::string_view> splitProcessList(std::string_view body, std::size_t most)
{
    std::vector<std::string_view> elements = splitBounded(body, '_', most, "processes");
    std::erase_if(elements, [](std::string_view element) { return trimmed(element).empty(); });
    return elements;
}

Request attachRequest(std::string_view user, std::string_view profileId)
{
    return actionRequest("Attach", user, std::string(profileId));
}

Request attachToProcessRequest(std::string_view user, std::string_view profileId, std::string_view processId)
{
    return actionRequest("Attach", user, std::string(profileId) + '_' + std::string(processId));
}

Request detachRequest(std::string_view user, std::string_view profileId)
{
    return actionRequest("Detach", user, std::string(profileId));
}

Request stopGameRequest(std::string_view user, std::string_view profileId)
{
    return actionRequest("StopGame", user, std::string(profileId));
}

Request deleteProfileRequest(std::string_view user, std::string_view profileName)
{
    Request request = actionRequest("DeleteProfile", user, {});
    request.head.append("_").append(profileName);
    return request;
}
