#include "diagnostics/help/HelpArchive.h"

#include "base/RuntimeError.h"

#include <mspack.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr char bookName[] = "book";
constexpr char objectName[] = "object";

/// The library's view of the disk: the book to read from, and one object to write to.
struct MemoryDisk : mspack_system
{
    std::string book;
    std::string object;
    std::size_t objectLimit = 0;
};

/// A file of that disk that is open.
struct MemoryFile : mspack_file
{
    MemoryDisk* disk;
    bool isBook;
    std::size_t position;
};

MemoryFile& opened(mspack_file* file)
{
    return *static_cast<MemoryFile*>(file);
}

mspack_file* openFile(mspack_system* self, const char* name, int mode)
{
    const bool isBook = mode == MSPACK_SYS_OPEN_READ && std::strcmp(name, bookName) == 0;
    const bool isObject = mode == MSPACK_SYS_OPEN_WRITE && std::strcmp(name, objectName) == 0;
    if (!isBook && !isObject)
        return nullptr;
    auto* file = new MemoryFile;
    file->disk = static_cast<MemoryDisk*>(self);
    file->isBook = isBook;
    file->position = 0;
    return file;
}

void closeFile(mspack_file* file)
{
    delete &opened(file);
}

int readFile(mspack_file* handle, void* buffer, int bytes)
{
    MemoryFile& file = opened(handle);
    if (!file.isBook || bytes < 0)
        return -1;
    const std::string& book = file.disk->book;
    const std::size_t count = std::min(static_cast<std::size_t>(bytes), book.size() - file.position);
    std::memcpy(buffer, book.data() + file.position, count);
    file.position += count;
    return static_cast<int>(count);
}

int writeFile(mspack_file* handle, void* buffer, int bytes)
{
    MemoryFile& file = opened(handle);
    MemoryDisk& disk = *file.disk;
    if (file.isBook || bytes < 0 || static_cast<std::size_t>(bytes) > disk.objectLimit - disk.object.size())
        return -1;
    disk.object.append(static_cast<const char*>(buffer), static_cast<std::size_t>(bytes));
    return bytes;
}

int seekFile(mspack_file* handle, off_t offset, int mode)
{
    MemoryFile& file = opened(handle);
    const auto size = static_cast<off_t>(file.disk->book.size());
    const off_t from = mode == MSPACK_SYS_SEEK_START ? 0
                       : mode == MSPACK_SYS_SEEK_END ? size
                                                     : static_cast<off_t>(file.position);
    if (!file.isBook || offset < -from || offset > size - from)
        return -1;
    file.position = static_cast<std::size_t>(from + offset);
    return 0;
}

off_t tellFile(mspack_file* handle)
{
    return static_cast<off_t>(opened(handle).position);
}

void ignoreMessage(mspack_file*, const char*, ...) {}

/// No sound book of the size that is taken needs more at once; a damaged one may ask for anything.
void* takeMemory(mspack_system*, std::size_t bytes)
{
    constexpr std::size_t maxBytes = std::size_t{64} * 1024 * 1024;
    return bytes <= maxBytes ? std::malloc(bytes) : nullptr;
}

void copyMemory(void* from, void* to, std::size_t bytes)
{
    std::memcpy(to, from, bytes);
}

/// Some compilers write the first of the header's two identities twice, which other readers do not mind. The library
/// insists on the second one.
void mendIdentities(std::string& bytes)
{
    constexpr std::size_t first = 0x18;
    constexpr std::size_t second = 0x28;
    constexpr std::size_t identityBytes = 0x10;
    if (bytes.size() >= second + identityBytes &&
        bytes.compare(first, identityBytes, bytes, second, identityBytes) == 0)
        bytes[second] = '\x11';
}

std::size_t unsignedOf(off_t value)
{
    return value < 0 ? 0 : static_cast<std::size_t>(value);
}

bool isShowable(std::string_view name)
{
    return std::none_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

} // namespace

struct HelpArchive::Library
{
    explicit Library(std::string bytes)
    {
        disk.open = openFile;
        disk.close = closeFile;
        disk.read = readFile;
        disk.write = writeFile;
        disk.seek = seekFile;
        disk.tell = tellFile;
        disk.message = ignoreMessage;
        disk.alloc = takeMemory;
        disk.free = std::free;
        disk.copy = copyMemory;
        disk.null_ptr = nullptr;
        mendIdentities(bytes);
        disk.book = std::move(bytes);
        unpacker = mspack_create_chm_decompressor(&disk);
        if (!unpacker)
            throw RuntimeError(ErrorNumber::OutOfMemory);
        header = unpacker->open(unpacker, bookName);
    }
    ~Library()
    {
        if (header)
            unpacker->close(unpacker, header);
        mspack_destroy_chm_decompressor(unpacker);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    MemoryDisk disk;
    mschm_decompressor* unpacker = nullptr;
    mschmd_header* header = nullptr;
    std::map<std::string, mschmd_file*, std::less<>> files; ///< by full name
};

HelpArchive::HelpArchive(std::string bytes) : m_library(std::make_unique<Library>(std::move(bytes)))
{
    if (!m_library->header)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, "this is no compiled help file, or it is damaged");
    for (mschmd_file* list : {m_library->header->files, m_library->header->sysfiles}) {
        for (mschmd_file* file = list; file; file = file->next) {
            if (isShowable(file->filename))
                m_library->files.try_emplace(file->filename, file);
        }
    }
}

HelpArchive::~HelpArchive() = default;

std::map<std::string, std::size_t, std::less<>> HelpArchive::objects() const
{
    std::map<std::string, std::size_t, std::less<>> all;
    for (const auto& [name, file] : m_library->files)
        all.emplace_hint(all.end(), name, unsignedOf(file->length));
    return all;
}

std::string HelpArchive::unpacked(std::string_view name) const
{
    const auto found = m_library->files.find(name);
    if (found == m_library->files.end())
        throw RuntimeError(ErrorNumber::InvalidFileFormat, name);
    mschmd_file* const file = found->second;
    const std::size_t length = unsignedOf(file->length);
    if (file->offset < 0 || length > maxUnpackedBytes || unsignedOf(file->offset) > maxUnpackedBytes - length)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, name);
    MemoryDisk& disk = m_library->disk;
    disk.object.clear();
    disk.objectLimit = length;
    const int error = m_library->unpacker->extract(m_library->unpacker, file, objectName);
    if (error != MSPACK_ERR_OK || disk.object.size() != length)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, name);
    return std::exchange(disk.object, {});
}
