#include "updates/Sha256.h"

#include <sodium.h>

#include <array>
#include <fstream>

struct Sha256::State
{
    crypto_hash_sha256_state hash;
};

Sha256::Sha256() : m_state(std::make_unique<State>())
{
    crypto_hash_sha256_init(&m_state->hash);
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes)
{
    crypto_hash_sha256_update(&m_state->hash, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string Sha256::digits()
{
    static_assert(crypto_hash_sha256_BYTES * 2 == digitCount);
    std::array<unsigned char, crypto_hash_sha256_BYTES> sum{};
    crypto_hash_sha256_final(&m_state->hash, sum.data());
    std::array<char, digitCount + 1> text{};
    sodium_bin2hex(text.data(), text.size(), sum.data(), sum.size());
    return text.data();
}

std::string sha256Of(const std::filesystem::path& file)
{
    constexpr std::size_t stepBytes = std::size_t{64} * 1024;
    std::ifstream stream(file, std::ios::binary);
    Sha256 sum;
    std::array<char, stepBytes> step;
    while (stream) {
        stream.read(step.data(), step.size());
        sum.add({step.data(), static_cast<std::size_t>(stream.gcount())});
    }
    return stream.eof() ? sum.digits() : std::string();
}
