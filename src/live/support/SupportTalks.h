#pragma once

#include "link/Connection.h"
#include "live/support/Conversation.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

/// What one account and the operator of its host have said, and what belongs to that.
struct SupportTalk
{
    std::optional<Connection> account; ///< without its password; nothing before anybody has logged in
    Conversation conversation;
    QString draft;                  ///< what was typed and not sent
    std::filesystem::path saveFile; ///< the last file that it was saved to; empty before
};

/// The talks of the accounts that were used last, each shown and continued only for its own.
class SupportTalks
{
public:
    /// A talk that is not among the last ones is forgotten, as all are at the end of the program.
    static constexpr std::size_t maxTalks = 4;

    explicit SupportTalks(const Bounds& bounds = {}) : m_bounds(bounds), m_talks{fresh()} {}

    /// Never null. Whoever saves a talk keeps a share in it, because another account may log in meanwhile.
    const std::shared_ptr<SupportTalk>& current() const { return m_talks.front(); }
    /// Makes the talk of `account` the current one, unfiltered when that is a change. What was typed before anybody
    /// had logged in goes to the first account.
    /// @return whether it is another talk than before
    bool select(const Connection& account);

private:
    std::shared_ptr<SupportTalk> fresh() const;

    Bounds m_bounds;
    std::vector<std::shared_ptr<SupportTalk>> m_talks; ///< the newest first
};
