#include "profiles/list/ProfilePictures.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "profiles/list/ProfileRecord.h"
#include "store/AppFolder.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

constexpr QSize statusSize(16, 16);
constexpr QSize modSize(20, 16);

struct StatusPicture
{
    const char* file;
    const char16_t* meaning;
};

constexpr std::array<StatusPicture, 6> statusPictures{{
    {"\\nothosting.gif", u"Active/Not Hosting"},
    {"\\loading.gif", u"Loading Map"},
    {"\\hosting.gif", u"Hosting Map"},
    {"\\hosting.gif", u"Hosting Map"},
    {"\\scoring.gif", u"Scoring Map"},
    {"\\notactive.gif", u"Not Active"},
}};

const StatusPicture* pictureOf(std::int32_t status)
{
    return status >= 0 && status < std::ssize(statusPictures) ? &statusPictures[static_cast<std::size_t>(status)]
                                                              : nullptr;
}

bool endsAsOneOf(std::string_view name, std::initializer_list<std::string_view> endings)
{
    const std::string lower = lowerAscii(name);
    return std::any_of(endings.begin(), endings.end(),
                       [&](std::string_view ending) { return lower.ends_with(ending); });
}

/// Endings of the formats that can be shown.
bool isUsualName(std::string_view name)
{
    return endsAsOneOf(name, {".gif", ".png", ".jpg", ".jpeg", ".bmp"});
}

/// Endings of other formats. A file of such a name can be shown when its content is of a usual one.
bool isOtherName(std::string_view name)
{
    return endsAsOneOf(name, {".ico", ".tif", ".tiff", ".webp"});
}

} // namespace

bool isImageName(std::string_view name)
{
    return isUsualName(name) || isOtherName(name);
}

ProfilePictures::ProfilePictures(const AppFolder& folder, PictureStore& pictures)
    : m_folder(folder),
      m_pictures(pictures)
{}

std::vector<std::string> ProfilePictures::heldPictures() const
{
    std::vector<std::string> names = m_folder.fileNames("\\mods");
    std::erase_if(names, [this](const std::string& name) {
        return !isUsualName(name) && !(isOtherName(name) && canBeShown("\\mods\\" + name));
    });
    return names;
}

bool ProfilePictures::canBeShown(const std::string& layoutName) const
{
    try {
        const auto bytes = readBytesIfPresent(m_folder.path(layoutName), PictureStore::maxFileBytes);
        return bytes && PictureStore::isPicture(*bytes, PictureStore::maxSide);
    } catch (const RuntimeError&) {
        return false; // too large, or not to be read
    }
}

QPixmap ProfilePictures::modPicture(std::string_view name, qreal devicePixelRatio)
{
    // One that the tracker did not send and the client does not hold is no fault, so it is not asked of the pictures.
    const std::string layoutName = "\\mods\\" + std::string(name);
    if (!isPlainFileName(name) || !m_folder.fileExists(layoutName))
        return {};
    return m_pictures.scaled(layoutName, modSize, devicePixelRatio, Qt::KeepAspectRatio);
}

QPixmap ProfilePictures::statusPicture(std::int32_t status, qreal devicePixelRatio)
{
    const StatusPicture* picture = pictureOf(status);
    return picture ? m_pictures.scaled(picture->file, statusSize, devicePixelRatio) : QPixmap();
}

QString ProfilePictures::statusMeaning(std::int32_t status)
{
    const StatusPicture* picture = pictureOf(status);
    return picture ? QString::fromUtf16(picture->meaning) : QString();
}
