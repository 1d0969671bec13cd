#include "profiles/files/RemoteFiles.h"

#include "Check.h"
#include "base/Base64.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextSearch.h"

#include <algorithm>

namespace {

void checkEntry(std::string_view entry, const RemoteFileType& type)
{
    RemoteFile file;
    const auto error = raisedBy([&] { file = decodeRemoteFile(entry, type); });
    const auto bars = std::count(entry.begin(), entry.end(), '|');
    check(error.has_value() == (bars < (type.isBackup ? 3 : 2)));
    check(!error || error == ErrorNumber::SubscriptOutOfRange);
    if (error)
        return;
    const std::string path = remotePath(type, file);
    check(path.starts_with(type.folder) && path.ends_with(file.name));
    const Request request = getRemFileRequest("user", 7, path);
    check(base64::decode(request.tail.substr(2)) == path);
    check(request.tail.find_first_of("[]_") == std::string::npos); // no name can end the request early
}

void checkList(std::string_view text)
{
    for (const std::string_view entry : splitFileList(text, 1000)) {
        check(!entry.empty() && liesIn(text, entry));
        check(entry.find("||") == std::string_view::npos);
        for (const RemoteFileType& type : remoteFileTypes)
            checkEntry(entry, type);
    }
}

/// The content of a file, line by line: together the lines are the text.
void checkLines(const std::string& text)
{
    const LinedText lined(text);
    check(lined.lineCount() >= 1 && lined.lineStart(0) == 0);
    std::size_t shown = 0;
    for (std::size_t line = 0; line < lined.lineCount(); ++line) {
        const std::size_t start = lined.lineStart(line);
        const std::size_t next = line + 1 < lined.lineCount() ? lined.lineStart(line + 1) : text.size();
        check(lined.lineOf(start) == line && next >= start);
        const std::string_view view = lined.line(line);
        check(view == std::string_view(text).substr(start, view.size()));
        check(view.find_first_of("\r\n") == std::string_view::npos);
        check(next - start - view.size() <= 2);
        check(byteAtColumn(view, columnOf(view, view.size())) == view.size());
        shown += next - start;
    }
    check(shown == text.size());
}

void checkSearch(std::string_view wanted, std::string_view text)
{
    TextSearch::Folding same;
    for (std::size_t byte = 0; byte < same.size(); ++byte)
        same[byte] = static_cast<unsigned char>(byte);
    const TextSearch search(wanted, same);
    const std::size_t first = text.find(wanted);
    const std::size_t last = text.rfind(wanted);
    check(search.first(text, 0, text.size()).value_or(std::string_view::npos) == first);
    check(search.last(text, 0, text.size()).value_or(std::string_view::npos) == last);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkList(input);
    checkLines(std::string(input));
    if (size >= 4)
        checkSearch(input.substr(0, 1 + size % 3), input.substr(4));
    return 0;
}
