#include "updates/UpdateKey.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"

#include <sodium.h>

#include <array>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t algorithmBytes = 2;
constexpr std::size_t idBytes = 8;
constexpr std::size_t keyBytes = crypto_sign_PUBLICKEYBYTES;
constexpr std::size_t signatureBytes = crypto_sign_BYTES;
constexpr std::size_t hashBytes = 64;
constexpr std::string_view plainText = "Ed";
constexpr std::string_view hashedText = "ED";

const unsigned char* bytesOf(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// The decoded text when it is Base64 of exactly that many bytes.
std::optional<std::string> decoded(std::string_view text, std::size_t size)
{
    if (text.size() != (size + 2) / 3 * 4)
        return {};
    try {
        std::string bytes = base64::decode(text);
        if (bytes.size() == size)
            return bytes;
    } catch (const RuntimeError&) {
        return {};
    }
    return {};
}

/// What stands behind `words`, which the line must begin with.
std::optional<std::string_view> behind(std::string_view line, std::string_view words)
{
    if (!line.starts_with(words))
        return {};
    return line.substr(words.size());
}

} // namespace

std::optional<SignatureFile> SignatureFile::parse(std::string_view text)
{
    if (text.size() > maxBytes)
        return {};
    std::vector<std::string_view> lines = split(text, '\n');
    for (std::string_view& line : lines) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
    }
    while (!lines.empty() && lines.back().empty())
        lines.pop_back();
    if (lines.size() != 4 || !lines[0].starts_with("untrusted comment:"))
        return {};
    const auto whole = decoded(lines[1], algorithmBytes + idBytes + signatureBytes);
    const auto comment = behind(lines[2], "trusted comment: ");
    auto global = decoded(lines[3], signatureBytes);
    if (!whole || !comment || !global)
        return {};
    return SignatureFile{.algorithm = whole->substr(0, algorithmBytes),
                         .keyId = whole->substr(algorithmBytes, idBytes),
                         .signature = whole->substr(algorithmBytes + idBytes),
                         .trustedComment = *comment,
                         .globalSignature = *std::move(global)};
}

UpdateKey::UpdateKey(std::string id, std::string bytes) : m_id(std::move(id)), m_bytes(std::move(bytes)) {}

std::optional<UpdateKey> UpdateKey::fromText(std::string_view text)
{
    const std::string line = without(without(std::string(trimmed(text)), "\r"), "\n");
    if (auto bare = decoded(line, keyBytes))
        return UpdateKey({}, *std::move(bare));
    const auto named = decoded(line, algorithmBytes + idBytes + keyBytes);
    if (!named || !named->starts_with(plainText))
        return {};
    return UpdateKey(named->substr(algorithmBytes, idBytes), named->substr(algorithmBytes + idBytes));
}

bool UpdateKey::matches(std::string_view signature, std::string_view text) const
{
    return crypto_sign_verify_detached(bytesOf(signature), bytesOf(text), text.size(), bytesOf(m_bytes)) == 0;
}

bool UpdateKey::hasSigned(std::string_view text, std::string_view signature) const
{
    const std::optional<SignatureFile> file = SignatureFile::parse(signature);
    if (!file || (!m_id.empty() && m_id != file->keyId) || sodium_init() < 0)
        return false;
    std::string message(text);
    if (file->algorithm == hashedText) {
        std::array<unsigned char, hashBytes> hash{};
        crypto_generichash(hash.data(), hash.size(), bytesOf(text), text.size(), nullptr, 0);
        message.assign(hash.begin(), hash.end());
    } else if (file->algorithm != plainText) {
        return false;
    }
    return matches(file->signature, message) &&
           matches(file->globalSignature, file->signature + std::string(file->trustedComment));
}

std::string UpdateKey::digits() const
{
    std::array<char, keyBytes * 2 + 1> text{};
    sodium_bin2hex(text.data(), text.size(), bytesOf(m_bytes), m_bytes.size());
    return text.data();
}
