#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Who may say what belongs at an update location: a public Ed25519 key, as minisign writes and uses it.
class UpdateKey
{
public:
    /// @param text  one line of Base64: "Ed", 8 bytes that name the key and its 32 bytes, or these 32 alone; blanks
    ///              around it allowed
    /// @return nothing for what is no such key
    static std::optional<UpdateKey> fromText(std::string_view text);

    /// Whether `signature`, a whole signature file, is this key's for `text`: of the text itself or of its BLAKE2b
    /// hash, with its trusted comment.
    bool hasSigned(std::string_view text, std::string_view signature) const;

    /// Tells this key from others; 64 hexadecimal digits.
    std::string digits() const;

    bool operator==(const UpdateKey&) const = default;

private:
    UpdateKey(std::string id, std::string bytes);
    bool matches(std::string_view signature, std::string_view text) const;

    std::string m_id; ///< empty for a key that has no name
    std::string m_bytes;
};

/// The four lines of a signature file, taken apart; the views point into its text. Nothing in it is proven.
struct SignatureFile
{
    std::string algorithm; ///< "Ed" for the text itself, "ED" for its hash
    std::string keyId;
    std::string signature;
    std::string_view trustedComment; ///< without the words before it
    std::string globalSignature;     ///< of signature and trusted comment

    static constexpr std::size_t maxBytes = std::size_t{16} * 1024;

    /// @return nothing for what is no such file
    static std::optional<SignatureFile> parse(std::string_view text);
};
