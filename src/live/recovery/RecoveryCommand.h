#pragma once

#include <string>
#include <string_view>

/// What the recovery tool on the host can be told to do with the tracker.
enum class RecoveryOrder { Start, Restart, Stop };

/// The order as it travels, without any framing around it.
/// @param user      of the tracker, in the code page of the profile store
/// @param password  likewise
std::string recoveryCommand(RecoveryOrder order, std::string_view user, std::string_view password);

/// Gathers what the tool answers, in however many pieces it comes.
class RecoveryAnswer
{
public:
    /// No honest answer is as long; what exceeds it is not kept.
    static constexpr std::size_t maxBytes = std::size_t{64} * 1024;

    /// @return whether the answer is complete: its end marker has come, or it cannot grow any more
    bool take(std::string_view piece);
    bool isEmpty() const { return m_gathered.empty(); }
    /// What has come so far, without its "[ST]" and "[ND]".
    std::string text() const;

private:
    std::string m_gathered;
};
