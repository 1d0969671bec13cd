#include "base/LongWords.h"

namespace longWords {

std::vector<std::size_t> breaksIn(std::string_view text)
{
    std::vector<std::size_t> breaks;
    std::size_t word = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        word = text[at] == '\n' || text[at] == ' ' ? 0 : word + 1;
        if (word > longest) {
            breaks.push_back(at);
            word = 1;
        }
    }
    return breaks;
}

std::string broken(std::string_view text)
{
    std::string lines;
    lines.reserve(text.size() + text.size() / longest);
    std::size_t from = 0;
    for (const std::size_t at : breaksIn(text)) {
        lines.append(text.substr(from, at - from)).append("\n");
        from = at;
    }
    return lines.append(text.substr(from));
}

} // namespace longWords
