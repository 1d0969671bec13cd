#include "updates/UpdateManifest.h"
#include "Check.h"
#include "base/Bounds.h"
#include "base/Text.h"
#include "updates/Sha256.h"
#include "updates/UpdateKey.h"

#include <algorithm>

// A manifest, a signature file or a key; the first decides which of the three takes it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = viewOf(data, size);
    if (const auto manifest = UpdateManifest::parse(text)) {
        check(manifest->size() <= Bounds{}.updateListRecords && manifest->date().size() == 10);
        check(manifest->size() + 2 <= static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
        for (const std::string_view line : split(text, '\n')) {
            const ManifestEntry* entry = manifest->find("\\", line.substr(line.rfind(' ') + 1));
            if (!entry)
                continue;
            check(entry->digest.size() == Sha256::digitCount && entry->digest == lowerAscii(entry->digest));
            check(equalsIgnoringCase(entry->folder, "\\") && !entry->name.empty() && entry->version != "-");
            UpdateRecord record{.name = entry->name, .folder = entry->folder, .type = {}, .description = {}};
            record.version = entry->version;
            check(agrees(*entry, record) == (entry->size == 0));
        }
    }
    if (const auto signature = SignatureFile::parse(text)) {
        check(signature->algorithm.size() == 2 && signature->keyId.size() == 8);
        check(signature->signature.size() == 64 && signature->globalSignature.size() == 64);
        check(liesIn(text, signature->trustedComment));
    }
    static const auto key = UpdateKey::fromText("RWQf6LRCGA9i53mlYecO4IzT51TGPpvWucNSCh1CBM0QTaLn73Y7GFO3");
    check(!key->hasSigned("what nobody has signed", text));
    if (const auto other = UpdateKey::fromText(text))
        check(text.size() >= 44 && other->digits().size() == 64);
    return 0;
}
