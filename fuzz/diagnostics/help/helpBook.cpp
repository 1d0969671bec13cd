#include "diagnostics/help/HelpBook.h"

#include "Check.h"

#include <algorithm>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// One file, written anew for each input.
struct BookFile
{
    fs::path path = fs::temp_directory_path() / ("helpBook." + std::to_string(getpid()) + ".chm");

    ~BookFile()
    {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const BookFile file;
    std::ofstream(file.path, std::ios::binary | std::ios::trunc) << viewOf(data, size);

    std::optional<HelpBook> book;
    const auto error = raisedBy([&] { book.emplace(file.path); });
    check(!error || error == ErrorNumber::InvalidFileFormat);
    if (error)
        return 0;
    check(book->isCurrent());
    const std::vector<std::string> names = book->names();
    check(std::is_sorted(names.begin(), names.end()));
    check(std::adjacent_find(names.begin(), names.end()) == names.end());
    for (const std::string& name : names)
        check(!name.empty() && name.front() != '#' && name.front() != '$' && name.back() != '/');
    const std::string home = book->homePage();
    check(home.empty() || std::find(names.begin(), names.end(), home) != names.end());
    check(!book->page("\x01 is in no name"));
    for (const std::string& name : names) {
        const auto damage = raisedBy([&] { check(book->page(name).has_value()); });
        check(!damage || damage == ErrorNumber::InvalidFileFormat);
    }
    return 0;
}
