#include "live/support/SupportTalks.h"

#include <algorithm>

std::shared_ptr<SupportTalk> SupportTalks::fresh() const
{
    return std::make_shared<SupportTalk>(
        SupportTalk{.account = {}, .conversation = Conversation(m_bounds), .draft = {}, .saveFile = {}});
}

bool SupportTalks::select(const Connection& account)
{
    const bool isFirst = !current()->account;
    const auto found =
        isFirst ? m_talks.begin() : std::find_if(m_talks.begin(), m_talks.end(), [&account](const auto& talk) {
            return talk->account->isSameAccount(account);
        });
    const bool isChange = found != m_talks.begin();
    if (found == m_talks.end()) {
        m_talks.insert(m_talks.begin(), fresh());
        m_talks.resize(std::min(m_talks.size(), maxTalks));
    } else {
        std::rotate(m_talks.begin(), found, found + 1);
    }
    current()->account = account;
    current()->account->password.clear();
    if (isChange)
        current()->conversation.filter(Conversation::Speaker::All, {}, {});
    return isChange;
}
