#include "admins/AccountDrafts.h"

#include <algorithm>

std::deque<AccountDrafts::Kept>::iterator AccountDrafts::find(const AccountHome& home)
{
    return std::find_if(m_kept.begin(), m_kept.end(), [&home](const Kept& kept) { return kept.first.isSame(home); });
}

void AccountDrafts::keep(const AccountHome& home, AccountDraft draft)
{
    take(home);
    m_kept.emplace_back(home, std::move(draft));
    if (m_kept.size() > most)
        m_kept.pop_front();
}

std::optional<AccountDraft> AccountDrafts::take(const AccountHome& home)
{
    const auto found = find(home);
    if (found == m_kept.end())
        return {};
    AccountDraft draft = std::move(found->second);
    m_kept.erase(found);
    return draft;
}

void AccountDrafts::forgetSaved(const AccountHome& home, const AccountDraft& draft)
{
    if (const auto found = find(home); found != m_kept.end() && found->second == draft)
        m_kept.erase(found);
}
