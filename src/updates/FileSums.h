#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The checksum of bytes that arrive one after the other.
class Sha256
{
public:
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

/// Who may say what belongs at an update location: a public Ed25519 key.
class UpdateKey
{
public:
    /// @param text  Base64 of the 32 bytes of the key, blanks around it allowed
    /// @return nothing for what is no such key
    static std::optional<UpdateKey> fromText(std::string_view text);

    /// @param signature  Base64 of the 64 bytes of the signature; line ends around it allowed
    bool hasSigned(std::string_view text, std::string_view signature) const;

private:
    explicit UpdateKey(std::string bytes);

    std::string m_bytes;
};

/// The checksums that an update location offers beside its lists, by file name.
class FileSums
{
public:
    static constexpr std::string_view listName = "qrvv3rc_sha256.txt";
    static constexpr std::string_view signatureName = "qrvv3rc_sha256.txt.sig";

    /// Reads a list whose signature has been checked: lines of 64 hexadecimal digits, two blanks (or a blank and "*")
    /// and a file name.
    explicit FileSums(std::string_view text);

    /// Whether a file of that name may have these contents; not when the list does not name it.
    bool matches(std::string_view name, std::string_view digits) const;

private:
    std::map<std::string, std::string, std::less<>> m_digits; ///< by name in lower case
};
