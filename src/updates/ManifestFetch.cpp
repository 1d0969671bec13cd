#include "updates/ManifestFetch.h"

#include "base/RuntimeError.h"
#include "platform/net/Inet.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"

#include <utility>

using namespace Qt::StringLiterals;

ManifestFetch::ManifestFetch(const UpdateServices& services, const QString& location, UpdateKey key,
                             std::chrono::milliseconds limit)
    : m_services(services),
      m_key(std::move(key)),
      m_text(services.inet.get(addressAt(location, ListKind::Client, UpdateManifest::fileName), limit)),
      m_signature(services.inet.get(addressAt(location, ListKind::Client, UpdateManifest::signatureName), limit))
{
    for (const PageFetch* page : {m_text.get(), m_signature.get()})
        connect(page, &PageFetch::finished, this, &ManifestFetch::take);
}

ManifestFetch::~ManifestFetch() = default;

void ManifestFetch::take()
{
    if (m_isOver || m_text->isExecuting() || m_signature->isExecuting())
        return;
    m_isOver = true;
    m_fault = judge();
    if (!m_fault.isEmpty())
        m_manifest.reset();
    Q_EMIT finished();
}

/// @return what speaks against the manifest; empty when nothing does
QString ManifestFetch::judge()
{
    const PageAnswer& answer = m_text->answer();
    const PageAnswer& signature = m_signature->answer();
    if (!answer.isGood() || !answer.isWhole)
        return u"An update key is set, and the update location has no manifest"_s;
    if (!signature.isGood() || !signature.isWhole)
        return u"An update key is set, and the update location has no signature for its manifest"_s;
    const std::string text = answer.body.toStdString();
    m_isMismatched = !m_key.hasSigned(text, signature.body.toStdString());
    if (m_isMismatched)
        return u"The manifest of the update location is not signed with the update key"_s;
    m_manifest = UpdateManifest::parse(text);
    if (!m_manifest)
        return u"The manifest of the update location cannot be read"_s;
    const UpdateState state(m_services.targets.folder());
    const std::string key = m_key.digits();
    if (const std::uint64_t highest = state.highestSerial(key); m_manifest->serial() < highest)
        return u"The manifest of the update location is older (serial %1) than one that was seen before (serial %2)"_s
            .arg(m_manifest->serial())
            .arg(highest);
    try {
        state.noteSerial(key, m_manifest->serial());
    } catch (const RuntimeError&) {
        return u"The serial of the manifest cannot be noted, so an older one would not be told from it"_s;
    }
    return {};
}
