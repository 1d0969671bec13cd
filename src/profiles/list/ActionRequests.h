#pragma once

#include "link/Request.h"

#include <string>
#include <string_view>
#include <vector>

/// One running process of the host that a profile can be attached to.
struct ProcessRecord
{
    std::string id;
    std::string name;

    bool operator==(const ProcessRecord&) const = default;
};

/// @param element  Base64 of process id and name joined by "|"
/// @throws RuntimeError SubscriptOutOfRange for fewer than two fields, TypeMismatch for what is no Base64
ProcessRecord decodeProcess(std::string_view element);

/// Whether the reply to "Attach" is the outcome of an attach, "True" or "False", rather than a process list.
bool isAttachOutcome(std::string_view body);

/// The elements of a process list; blank ones are left out. Views into `body`.
/// @throws RuntimeError Overflow for more than `most`
std::vector<std::string_view> splitProcessList(std::string_view body, std::size_t most);

/// Asks for the processes that the profile can be attached to.
Request attachRequest(std::string_view user, std::string_view profileId);
Request attachToProcessRequest(std::string_view user, std::string_view profileId, std::string_view processId);
Request detachRequest(std::string_view user, std::string_view profileId);
Request stopGameRequest(std::string_view user, std::string_view profileId);
Request deleteProfileRequest(std::string_view user, std::string_view profileName);
