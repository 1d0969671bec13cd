#pragma once

#include "ui/PictureStore.h"

#include <QPixmap>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

class AppFolder;

/// Where the profile list's pictures lie: status pictures in the program's folder, those of the mods in "\mods".
class ProfilePictures
{
public:
    /// Both outlive this.
    ProfilePictures(const AppFolder& folder, PictureStore& pictures);

    /// File names of the mod pictures that the client holds.
    std::vector<std::string> heldPictures() const;
    /// Keeps the bytes of a mod's picture, if the tracker sends any.
    /// @param name   comes from the host; blank for a mod without a picture
    /// @param entry  bytes as the tracker sends them; empty when it sends none
    /// @throws RuntimeError PermissionDenied when `name` is no plain file name, and what `decodePictureBytes` and the
    ///         disk raise; nothing is written then
    void keepModPicture(std::string_view name, std::string_view entry) const;
    /// Null when there is none of that name.
    QPixmap modPicture(std::string_view name, qreal devicePixelRatio);
    /// Null for a status without a picture.
    QPixmap statusPicture(std::int32_t status, qreal devicePixelRatio);
    /// What a status means, for the legend and for screen readers; empty for one without a picture.
    static QString statusMeaning(std::int32_t status);
    /// Makes the folder of a profile, once a run.
    /// @throws RuntimeError PermissionDenied when `id`, which comes from the host, is no plain file name
    void makeProfileFolder(const std::string& id);

private:
    const AppFolder& m_folder;
    PictureStore& m_pictures;
    std::unordered_set<std::string> m_profileFolders; ///< those made in this run
};
