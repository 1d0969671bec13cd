#include "updates/FileSums.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace {

constexpr std::size_t keyBytes = 32;
constexpr std::size_t signatureBytes = 64;
constexpr std::size_t digitCount = 64;

const unsigned char* bytesOf(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// The decoded text when it is Base64 of exactly that many bytes.
std::optional<std::string> decoded(std::string_view text, std::size_t size)
{
    const std::string oneLine = without(without(without(text, "\r"), "\n"), " ");
    try {
        std::string bytes = base64::decode(oneLine);
        if (bytes.size() == size)
            return bytes;
    } catch (const RuntimeError&) {
        return {};
    }
    return {};
}

bool isDigits(std::string_view text)
{
    return text.size() == digitCount && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

struct Free
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

} // namespace

struct Sha256::State
{
    std::unique_ptr<EVP_MD_CTX, Free> context{EVP_MD_CTX_new()};
};

Sha256::Sha256() : m_state(std::make_unique<State>())
{
    if (!m_state->context || EVP_DigestInit_ex(m_state->context.get(), EVP_sha256(), nullptr) != 1)
        throw RuntimeError(ErrorNumber::InternalError, "SHA-256");
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes)
{
    if (EVP_DigestUpdate(m_state->context.get(), bytes.data(), bytes.size()) != 1)
        throw RuntimeError(ErrorNumber::InternalError, "SHA-256");
}

std::string Sha256::digits()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> sum{};
    unsigned size = 0;
    if (EVP_DigestFinal_ex(m_state->context.get(), sum.data(), &size) != 1)
        throw RuntimeError(ErrorNumber::InternalError, "SHA-256");
    constexpr std::string_view hex = "0123456789abcdef";
    std::string text;
    for (std::size_t index = 0; index < size; ++index) {
        text += hex[sum.at(index) >> 4];
        text += hex[sum.at(index) & 15];
    }
    return text;
}

UpdateKey::UpdateKey(std::string bytes) : m_bytes(std::move(bytes)) {}

std::optional<UpdateKey> UpdateKey::fromText(std::string_view text)
{
    std::optional<std::string> bytes = decoded(text, keyBytes);
    return bytes ? std::optional(UpdateKey(*std::move(bytes))) : std::nullopt;
}

bool UpdateKey::hasSigned(std::string_view text, std::string_view signature) const
{
    const std::optional<std::string> bytes = decoded(signature, signatureBytes);
    if (!bytes)
        return false;
    const std::unique_ptr<EVP_PKEY, Free> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(m_bytes), m_bytes.size()));
    const std::unique_ptr<EVP_MD_CTX, Free> context(EVP_MD_CTX_new());
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(*bytes), bytes->size(), bytesOf(text), text.size()) == 1;
}

FileSums::FileSums(std::string_view text)
{
    const std::string cleaned = without(text, "\r");
    for (const std::string_view line : split(cleaned, '\n')) {
        if (line.size() < digitCount + 3 || line[digitCount] != ' ' || !isDigits(line.substr(0, digitCount)))
            continue;
        m_digits.emplace(lowerAscii(line.substr(digitCount + 2)), lowerAscii(line.substr(0, digitCount)));
    }
}

bool FileSums::matches(std::string_view name, std::string_view digits) const
{
    const auto found = m_digits.find(lowerAscii(name));
    return found != m_digits.end() && found->second == digits;
}
