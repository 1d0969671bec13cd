#include "practice/web/UpdateSigner.h"

#include <QCryptographicHash>

#include <sodium.h>

namespace practice {

namespace {

constexpr qsizetype keyIdBytes = 8;

unsigned char* raw(QByteArray& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

const unsigned char* raw(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

} // namespace

UpdateSigner::UpdateSigner(const QByteArray& seed)
    : m_public(crypto_sign_PUBLICKEYBYTES, '\0'),
      m_secret(crypto_sign_SECRETKEYBYTES, '\0')
{
    if (sodium_init() < 0)
        qFatal("no cryptography");
    const QByteArray bytes = QCryptographicHash::hash(seed, QCryptographicHash::Sha256);
    m_keyId = bytes.left(keyIdBytes);
    crypto_sign_seed_keypair(raw(m_public), raw(m_secret), raw(bytes));
}

QByteArray UpdateSigner::publicKey() const
{
    return ("Ed" + m_keyId + m_public).toBase64();
}

QByteArray UpdateSigner::detached(const QByteArray& bytes) const
{
    QByteArray signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(raw(signature), nullptr, raw(bytes), static_cast<unsigned long long>(bytes.size()),
                         raw(m_secret));
    return signature;
}

QByteArray UpdateSigner::signatureOf(const QByteArray& text, bool isHashed) const
{
    const QByteArray message = isHashed ? QCryptographicHash::hash(text, QCryptographicHash::Blake2b_512) : text;
    const QByteArray signature = detached(message);
    const QByteArray comment = "made by the practice host";
    return "untrusted comment: signature of the practice host\n" +
           ((isHashed ? "ED" : "Ed") + m_keyId + signature).toBase64() + "\ntrusted comment: " + comment + '\n' +
           detached(signature + comment).toBase64() + '\n';
}

} // namespace practice
