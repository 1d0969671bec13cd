#include "platform/system/ExecutableFile.h"

#include <array>
#include <fstream>
#include <string_view>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view elfMagic = "\x7F"
                                      "ELF"sv;
constexpr std::size_t elfClassBytes = 2; // behind the magic: 32 or 64 bits, order of bytes
constexpr std::size_t elfMachineAt = 18;
constexpr std::size_t elfMachineBytes = 2;
constexpr std::string_view dosMagic = "MZ";
constexpr std::size_t peOffsetAt = 60; // four bytes, the lowest first
constexpr std::string_view peMagic = "PE\0\0"sv;
constexpr std::size_t peMachineBytes = 2; // behind the magic
constexpr std::size_t headBytes = 64;

std::string bytesAt(std::ifstream& stream, std::streamoff offset, std::size_t count)
{
    std::string bytes(count, '\0');
    stream.clear();
    stream.seekg(offset);
    stream.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
}

} // namespace

std::string executableKind(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string head = bytesAt(stream, 0, headBytes);
    if (head.size() < headBytes)
        return {};
    if (head.starts_with(elfMagic))
        return head.substr(0, elfMagic.size() + elfClassBytes) + head.substr(elfMachineAt, elfMachineBytes);
    if (!head.starts_with(dosMagic))
        return {};
    std::streamoff offset = 0;
    for (std::size_t byte = 4; byte-- > 0;)
        offset = (offset << 8) | static_cast<unsigned char>(head[peOffsetAt + byte]);
    const std::string kind = bytesAt(stream, offset, peMagic.size() + peMachineBytes);
    return kind.starts_with(peMagic) ? kind : std::string();
}

bool mayReplace(const std::filesystem::path& file, const std::filesystem::path& old)
{
    const std::string kind = executableKind(old);
    return kind.empty() || executableKind(file) == kind;
}
