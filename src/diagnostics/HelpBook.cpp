#include "diagnostics/HelpBook.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "store/FileBytes.h"

#include <chm_lib.h>

#include <algorithm>
#include <memory>
#include <source_location>
#include <system_error>
#include <utility>

namespace {

// The parts of the format that are needed to know that a file is sound. All numbers are little-endian.
constexpr std::size_t fileHeaderBytes = 0x60;
constexpr std::size_t directoryHeaderBytes = 0x54;
constexpr std::size_t leafHeaderBytes = 0x14;
constexpr std::size_t indexHeaderBytes = 0x08;
constexpr std::size_t minBlockBytes = 0x200;
constexpr std::size_t maxBlockBytes = 0x10000;
constexpr std::size_t maxNameBytes = 512;
constexpr std::uint64_t frameBytes = 0x8000; ///< the compressed section expands frame by frame
constexpr std::size_t maxEntries = 65536;
constexpr int compressedSection = 1;

constexpr std::string_view contentName = "::DataSpace/Storage/MSCompressed/Content";
constexpr std::string_view controlName = "::DataSpace/Storage/MSCompressed/ControlData";
constexpr std::string_view resetTableName = "::DataSpace/Storage/MSCompressed/Transform/"
                                            "{7FC28940-9D31-11D0-9B27-00A0C91E9C7C}/InstanceData/ResetTable";

[[noreturn]] void damaged(std::string_view what, std::source_location where = std::source_location::current())
{
    throw RuntimeError(ErrorNumber::InvalidFileFormat, what, where);
}

/// Takes values from the front of a piece of the file and never goes beyond its end.
class Reader
{
public:
    explicit Reader(std::string_view bytes) : m_rest(bytes) {}

    bool atEnd() const { return m_rest.empty(); }

    std::string_view take(std::uint64_t count)
    {
        if (count > m_rest.size())
            damaged("the file is cut off");
        const std::string_view piece = m_rest.substr(0, static_cast<std::size_t>(count));
        m_rest.remove_prefix(piece.size());
        return piece;
    }

    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }

    /// A number in groups of seven bits, the highest first; all but the last byte have their top bit set.
    std::uint64_t packed()
    {
        std::uint64_t value = 0;
        for (int group = 0; group < 9; ++group) {
            const auto byte = static_cast<unsigned char>(take(1).front());
            value = value << 7 | (byte & 0x7fU);
            if (byte < 0x80)
                return value;
        }
        damaged("a number in the directory is too long");
    }

    std::string_view name()
    {
        const std::uint64_t length = packed();
        if (length == 0 || length > maxNameBytes)
            damaged("a name in the directory has a bad length");
        const std::string_view text = take(length);
        if (std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }))
            damaged("a name in the directory has a control character");
        return text;
    }

private:
    std::uint64_t number(std::size_t count)
    {
        const std::string_view piece = take(count);
        std::uint64_t value = 0;
        for (std::size_t i = count; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(piece[i]);
        return value;
    }

    std::string_view m_rest;
};

/// A piece of the file that the file itself names.
std::string_view piece(std::string_view bytes, std::uint64_t start, std::uint64_t length,
                       std::source_location where = std::source_location::current())
{
    if (start > bytes.size() || length > bytes.size() - start)
        damaged("the file is cut off", where);
    return bytes.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
}

/// The directory: leaf blocks that list objects, chained to one another, and index blocks above them.
class DirectoryBlocks
{
public:
    DirectoryBlocks(std::string_view blocks, std::size_t blockBytes)
        : m_blocks(blocks),
          m_blockBytes(blockBytes),
          m_isLeaf(blocks.size() / blockBytes),
          m_inIndex(blocks.size() / blockBytes)
    {}

    /// Calls `entry(Reader&)` for each entry of the leaves, from block `first` on.
    template <typename Entry>
    void readLeaves(std::uint32_t first, Entry&& entry)
    {
        std::uint32_t next = first;
        while (next != none) {
            mark(m_isLeaf, next);
            Reader block(blockAt(next));
            if (block.take(4) != "PMGL")
                damaged("a directory block is not of the kind that it should be");
            const std::uint32_t freeBytes = block.u32();
            Reader entries = entriesOf(next, leafHeaderBytes, freeBytes);
            block.take(8); // a number without use and the block before this one
            next = block.u32();
            while (!entries.atEnd())
                entry(entries);
        }
    }

    /// Makes sure that a search from block `root` ends at one of the leaves that were read. Each block has one place in
    /// the tree, so the recursion is as deep as the tree and ends.
    void checkIndex(std::uint32_t root, int depth = 0)
    {
        constexpr int maxDepth = 8;
        if (root < m_isLeaf.size() && m_isLeaf[root])
            return;
        mark(m_inIndex, root);
        Reader block(blockAt(root));
        if (depth >= maxDepth || block.take(4) != "PMGI")
            damaged("the directory's index leads nowhere");
        Reader entries = entriesOf(root, indexHeaderBytes, block.u32());
        while (!entries.atEnd()) {
            entries.name();
            const std::uint64_t child = entries.packed();
            if (child >= m_isLeaf.size())
                damaged("the directory's index leads nowhere");
            checkIndex(static_cast<std::uint32_t>(child), depth + 1);
        }
    }

    static constexpr std::uint32_t none = 0xffffffff;

private:
    std::string_view blockAt(std::uint32_t index) const { return m_blocks.substr(index * m_blockBytes, m_blockBytes); }

    Reader entriesOf(std::uint32_t index, std::size_t headerBytes, std::uint32_t freeBytes) const
    {
        if (freeBytes > m_blockBytes - headerBytes)
            damaged("a directory block claims more room than it has");
        return Reader(blockAt(index).substr(headerBytes, m_blockBytes - headerBytes - freeBytes));
    }

    static void mark(std::vector<bool>& marks, std::uint32_t index)
    {
        if (index >= marks.size() || marks[index])
            damaged("the directory's blocks lead nowhere or in a circle");
        marks[index] = true;
    }

    std::string_view m_blocks;
    std::size_t m_blockBytes;
    std::vector<bool> m_isLeaf;
    std::vector<bool> m_inIndex;
};

struct CloseBook
{
    void operator()(chmFile* book) const { chm_close(book); }
};
using OpenBook = std::unique_ptr<chmFile, CloseBook>;

/// `name` as the directory would have it: "/" in front, "/" between folders, no anchor.
std::string fullName(std::string_view name)
{
    std::string full(name.substr(0, name.find('#')));
    std::replace(full.begin(), full.end(), '\\', '/');
    return full.starts_with('/') ? full : '/' + full;
}

bool isAuthorsName(std::string_view name)
{
    // Names with these beginnings are the format's own tables; those with "/" at the end are folders.
    return name.size() > 1 && name.starts_with('/') && !name.starts_with("/#") && !name.starts_with("/$") &&
           !name.ends_with('/');
}

} // namespace

HelpBook::HelpBook(std::filesystem::path file) : m_path(std::move(file)), m_stamp(stampOf(m_path))
{
    m_directory = readDirectory(readBytes(m_path, maxFileBytes));
    for (const auto& [name, object] : m_directory)
        m_anyCase.emplace(lowerAscii(name), name);
    for (const std::string& name : names()) {
        if (!lowerAscii(name).ends_with(".hhc"))
            continue;
        try {
            m_contents = parseHelpContents(page(name).value_or(std::string()));
        } catch (const RuntimeError&) {
            // The pages can be read without the contents.
        }
        break;
    }
}

std::optional<std::string> HelpBook::page(std::string_view name) const
{
    const Directory::value_type* found = find(name);
    if (!found || !isAuthorsName(found->first))
        return std::nullopt;
    const auto& [foundName, object] = *found;
    if (object.length == 0)
        return std::string();
    if (object.length > maxPageBytes)
        damaged(foundName + " is too large");
    if (!isCurrent())
        damaged("the file has changed since it was opened");
    const OpenBook book(chm_open(m_path.string().c_str()));
    if (!book)
        damaged(m_path.filename().string());
    chmUnitInfo unit{};
    unit.start = object.start;
    unit.length = object.length;
    unit.space = object.section;
    std::string bytes(static_cast<std::size_t>(object.length), '\0');
    const auto got = chm_retrieve_object(book.get(), &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                                         static_cast<LONGINT64>(object.length));
    if (got != static_cast<LONGINT64>(object.length))
        damaged(foundName);
    return bytes;
}

std::vector<std::string> HelpBook::names() const
{
    std::vector<std::string> all;
    for (const auto& [name, object] : m_directory) {
        if (isAuthorsName(name))
            all.push_back(name.substr(1));
    }
    return all;
}

std::string HelpBook::homePage() const
{
    for (const HelpContentsEntry& entry : m_contents) {
        if (find(entry.page))
            return entry.page;
    }
    for (const std::string& name : names()) {
        const std::string lower = lowerAscii(name);
        if (lower.ends_with(".html") || lower.ends_with(".htm"))
            return name;
    }
    return {};
}

bool HelpBook::isCurrent() const
{
    return m_stamp && stampOf(m_path) == m_stamp;
}

std::optional<HelpBook::Stamp> HelpBook::stampOf(const std::filesystem::path& file)
{
    std::error_code fault;
    Stamp stamp;
    stamp.changed = std::filesystem::last_write_time(file, fault);
    if (fault)
        return std::nullopt;
    stamp.bytes = std::filesystem::file_size(file, fault);
    if (fault)
        return std::nullopt;
    return stamp;
}

/// Checks all that the library relies on when it searches and expands, so that it can be let loose on the file.
HelpBook::Directory HelpBook::readDirectory(std::string_view bytes)
{
    Reader header(piece(bytes, 0, fileHeaderBytes));
    if (header.take(4) != "ITSF" || header.u32() != 3)
        damaged("this is no compiled help file");
    header.take(0x48 - 8);
    const std::uint64_t directoryStart = header.u64();
    const std::uint64_t directoryBytes = header.u64();
    const std::uint64_t dataStart = header.u64();
    const std::string_view data =
        piece(bytes, dataStart, bytes.size() - std::min<std::uint64_t>(dataStart, bytes.size()));

    const std::string_view directory = piece(bytes, directoryStart, directoryBytes);
    Reader directoryHeader(directory);
    if (directoryHeader.take(4) != "ITSP" || directoryHeader.u32() != 1 ||
        directoryHeader.u32() != directoryHeaderBytes)
        damaged("the directory's header is of an unknown kind");
    directoryHeader.take(4);
    const std::uint32_t blockBytes = directoryHeader.u32();
    directoryHeader.take(8);
    const std::uint32_t root = directoryHeader.u32();
    const std::uint32_t firstLeaf = directoryHeader.u32();
    directoryHeader.take(8);
    const std::uint32_t blockCount = directoryHeader.u32();
    if (blockBytes < minBlockBytes || blockBytes > maxBlockBytes)
        damaged("the directory's blocks have a bad size");

    DirectoryBlocks blocks(piece(directory, directoryHeaderBytes, std::uint64_t{blockBytes} * blockCount), blockBytes);
    Directory objects;
    blocks.readLeaves(firstLeaf, [&](Reader& entry) {
        const std::string_view name = entry.name();
        Object object;
        const std::uint64_t section = entry.packed();
        object.start = entry.packed();
        object.length = entry.packed();
        if (section > compressedSection)
            damaged("an object lies in an unknown section");
        object.section = static_cast<int>(section);
        if (object.section != compressedSection)
            piece(data, object.start, object.length);
        if (objects.size() >= maxEntries || !objects.emplace(name, object).second)
            damaged("the directory names an object twice, or too many");
    });
    // An index root that is no block number (all ones) stands for "no index: the first leaf is the only one".
    blocks.checkIndex(root >= 0x80000000U ? firstLeaf : root);
    checkCompression(objects, data);
    return objects;
}

void HelpBook::checkCompression(const Directory& directory, std::string_view data)
{
    const auto partNamed = [&](std::string_view wanted) -> std::optional<std::string_view> {
        std::optional<std::string_view> part;
        for (const auto& [name, object] : directory) {
            if (!equalsIgnoringCase(name, wanted))
                continue;
            if (part || object.section == compressedSection)
                damaged("the description of the compressed section is ambiguous");
            part = piece(data, object.start, object.length);
        }
        return part;
    };
    const auto content = partNamed(contentName);
    const auto control = partNamed(controlName);
    const auto resetTable = partNamed(resetTableName);
    std::uint64_t expandedBytes = 0;
    if (content && control && resetTable) {
        constexpr std::size_t maxControlBytes = 256;
        constexpr std::uint64_t minWindow = 0x8000;
        constexpr std::uint64_t maxWindow = 0x200000;
        if (control->size() > maxControlBytes)
            damaged("the description of the compressed section is too long");
        Reader parameters(*control);
        parameters.take(4);
        if (parameters.take(4) != "LZXC")
            damaged("the compressed section is of an unknown kind");
        const std::uint32_t version = parameters.u32();
        const std::uint64_t unit = version == 2 ? frameBytes : 1;
        const std::uint64_t resetInterval = parameters.u32() * unit;
        const std::uint64_t window = parameters.u32() * unit;
        const std::uint64_t windowsPerReset = parameters.u32();
        const bool windowIsGood = window >= minWindow && window <= maxWindow && (window & (window - 1)) == 0;
        if (!windowIsGood || resetInterval == 0 || resetInterval > 0x7fffffff || resetInterval % (window / 2) != 0 ||
            windowsPerReset == 0 || windowsPerReset > 0x7fff)
            damaged("the compressed section's parameters are out of bounds");

        Reader table(*resetTable);
        const std::uint32_t tableVersion = table.u32();
        const std::uint64_t frameCount = table.u32();
        table.take(4);
        const std::uint64_t tableStart = table.u32();
        expandedBytes = table.u64();
        const std::uint64_t compressedBytes = table.u64();
        const std::uint64_t bytesPerFrame = table.u64();
        if (tableVersion != 2 || bytesPerFrame != frameBytes || frameCount == 0 ||
            expandedBytes > frameCount * frameBytes || compressedBytes > content->size())
            damaged("the compressed section's table is out of bounds");
        Reader frames(piece(*resetTable, tableStart, frameCount * sizeof(std::uint64_t)));
        std::uint64_t before = 0;
        while (!frames.atEnd()) {
            const std::uint64_t frameStart = frames.u64();
            if (frameStart < before || frameStart > compressedBytes)
                damaged("the compressed section's frames are out of order");
            before = frameStart;
        }
    }
    for (const auto& [name, object] : directory) {
        if (object.section == compressedSection &&
            (object.start > expandedBytes || object.length > expandedBytes - object.start))
            damaged("an object lies beyond the compressed section");
    }
}

const HelpBook::Directory::value_type* HelpBook::find(std::string_view name) const
{
    const std::string full = fullName(name);
    auto found = m_directory.find(full);
    if (found == m_directory.end()) {
        const auto other = m_anyCase.find(lowerAscii(full));
        if (other != m_anyCase.end())
            found = m_directory.find(other->second);
    }
    return found == m_directory.end() ? nullptr : &*found;
}
