#include "profiles/list/ProfilePictures.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "profiles/list/ProfileRecord.h"
#include "store/AppFolder.h"

#include <algorithm>
#include <array>
#include <filesystem>

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

/// Whether the system would call a file of that name an image.
bool isImageName(std::string_view name)
{
    constexpr std::array<std::string_view, 9> endings{".gif", ".png", ".jpg",  ".jpeg", ".bmp",
                                                      ".ico", ".tif", ".tiff", ".webp"};
    const std::string lower = lowerAscii(name);
    return std::any_of(endings.begin(), endings.end(),
                       [&](std::string_view ending) { return lower.ends_with(ending); });
}

} // namespace

ProfilePictures::ProfilePictures(const AppFolder& folder, PictureStore& pictures)
    : m_folder(folder),
      m_pictures(pictures)
{}

std::vector<std::string> ProfilePictures::heldPictures() const
{
    std::vector<std::string> names = m_folder.fileNames("\\mods");
    std::erase_if(names, [](const std::string& name) { return !isImageName(name); });
    return names;
}

void ProfilePictures::keepModPicture(std::string_view name, std::string_view entry) const
{
    if (trimmed(name).empty())
        return;
    if (!isPlainFileName(name))
        throw RuntimeError(ErrorNumber::PermissionDenied, name);
    const std::string bytes = decodePictureBytes(entry);
    if (bytes.empty())
        return;
    m_folder.makeFolder("\\mods");
    writeBytes(m_folder.path("\\mods\\" + std::string(name)), bytes);
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

void ProfilePictures::makeProfileFolder(const std::string& id)
{
    if (m_profileFolders.contains(id))
        return;
    if (!isPlainFileName(id))
        throw RuntimeError(ErrorNumber::PermissionDenied, id);
    // An id has no letter case, so the folder needs no search among its neighbours, of which there may be thousands.
    const std::filesystem::path folder = m_folder.path("\\profiles") / id;
    std::error_code fault;
    std::filesystem::create_directories(folder, fault);
    if (fault)
        throwFileError(fault, folder);
    m_profileFolders.insert(id);
}
