#pragma once

#include "updates/UpdateManifest.h"
#include "updates/UpdateServices.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

class PageFetch;

/// The manifest of an update location that is being fetched and proven with a key. Deleting this ends it;
/// `finished` is not emitted then.
class ManifestFetch : public QObject
{
    Q_OBJECT

public:
    /// @param services  outlives this
    /// @param limit     time for each of the two transfers
    ManifestFetch(const UpdateServices& services, const QString& location, UpdateKey key,
                  std::chrono::milliseconds limit);
    ~ManifestFetch() override;

    bool isOver() const { return m_isOver; }
    /// Nothing unless it is the key's and no older than what has been seen from it.
    const std::optional<UpdateManifest>& manifest() const { return m_manifest; }
    /// Why there is no manifest; a sentence without its full stop.
    const QString& fault() const { return m_fault; }
    /// Whether there are a manifest and a signature, and they do not belong to each other.
    bool isMismatched() const { return m_isMismatched; }

Q_SIGNALS:
    /// Once, from the event loop.
    void finished();

private:
    void take();
    QString judge();

    const UpdateServices& m_services;
    UpdateKey m_key;
    std::unique_ptr<PageFetch> m_text;
    std::unique_ptr<PageFetch> m_signature;
    std::optional<UpdateManifest> m_manifest;
    QString m_fault;
    bool m_isMismatched = false;
    bool m_isOver = false;
};
