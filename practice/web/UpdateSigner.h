#pragma once

#include <QByteArray>

namespace practice {

/// A maker's secret key, which signs in the form of minisign. Made from a seed, so that it is the same in every run.
class UpdateSigner
{
public:
    explicit UpdateSigner(const QByteArray& seed = "the practice host's own signer");

    /// The public key as one line of Base64.
    QByteArray publicKey() const;
    /// The signature file of a text: of its hash, as is usual, or of the text itself.
    QByteArray signatureOf(const QByteArray& text, bool isHashed = true) const;

private:
    QByteArray detached(const QByteArray& bytes) const;

    QByteArray m_keyId;
    QByteArray m_public;
    QByteArray m_secret;
};

} // namespace practice
