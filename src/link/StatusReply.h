#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One plugin that the tracker runs, as its status reply names it.
struct TrackerPlugin
{
    std::string name;
    std::optional<std::string> version; ///< missing when the entry has fewer than four fields

    bool operator==(const TrackerPlugin&) const = default;
};

/// The entries of a "GetStatus" reply, without the leading word and without blank ones. Views into `body`.
/// @throws RuntimeError SubscriptOutOfRange when the first entry has no leading word, Overflow for more than `most`
std::vector<std::string_view> splitStatusReply(std::string_view body, std::size_t most);

/// @param entry  three or four fields joined by "-": Base64 name, two that are not used, version
/// @throws RuntimeError TypeMismatch for a name that is no Base64
TrackerPlugin decodeStatusEntry(std::string_view entry);

/// A message that the tracker's part of a plugin sends to the client's part.
struct PluginMessage
{
    std::string component; ///< name of the client-side component, without ".clsPlugin"
    std::string payload;

    bool operator==(const PluginMessage&) const = default;
};

/// Whether a message goes to a plugin, whatever request is pending.
bool isPluginMessage(std::string_view body);

/// @param body  "Plugin", component and payload joined by "_"; the payload may contain "_"
/// @throws RuntimeError SubscriptOutOfRange when no component is named
PluginMessage decodePluginMessage(std::string_view body);
