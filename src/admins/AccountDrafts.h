#pragma once

#include "admins/AccountHome.h"
#include "admins/AdminRecords.h"

#include <QString>

#include <deque>
#include <optional>
#include <utility>

/// An account as a form holds it: what the tracker told, and what the user made of it.
struct AccountDraft
{
    std::optional<AdminAccount> account = {}; ///< as the tracker told it; none for a new one
    QString name = {};                        ///< as typed; it may hold what cannot be sent
    QString password = {};                    ///< likewise
    Checklist received = {};
    Checklist edited = {};
    bool isWhole = false; ///< the checklist arrived undamaged

    bool operator==(const AccountDraft&) const = default;
};

/// What was typed for accounts and not saved, home by home, while the window shows another one.
class AccountDrafts
{
public:
    /// As many homes are remembered; beyond them the one that was left longest ago is forgotten.
    static constexpr std::size_t most = 16;

    /// Takes the place of what was kept for that home before.
    void keep(const AccountHome& home, AccountDraft draft);
    /// What was kept for that home; it is not kept any longer.
    std::optional<AccountDraft> take(const AccountHome& home);
    /// `draft` has been saved: it is not kept any longer, unless it was changed after that.
    void forgetSaved(const AccountHome& home, const AccountDraft& draft);

private:
    using Kept = std::pair<AccountHome, AccountDraft>;

    std::deque<Kept>::iterator find(const AccountHome& home);

    std::deque<Kept> m_kept; ///< one a home, the oldest first
};
