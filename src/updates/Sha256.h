#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

/// The checksum of bytes that arrive one after the other.
class Sha256
{
public:
    static constexpr std::size_t digitCount = 64;

    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void add(std::string_view bytes);
    /// 64 hexadecimal digits in lower case. Called once, last.
    std::string digits();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The checksum of a file, which is read step by step.
/// @return an empty text when it cannot be read to its end
std::string sha256Of(const std::filesystem::path& file);
