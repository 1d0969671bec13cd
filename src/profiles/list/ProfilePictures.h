#pragma once

#include "ui/PictureStore.h"

#include <QPixmap>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;

/// Whether the system would call a file of that name an image.
bool isImageName(std::string_view name);

/// Where the profile list's pictures lie: status pictures in the program's folder, those of the mods in "\mods".
class ProfilePictures
{
public:
    /// Both outlive this.
    ProfilePictures(const AppFolder& folder, PictureStore& pictures);

    /// File names of the mod pictures that the client holds and can show.
    std::vector<std::string> heldPictures() const;
    /// Null when there is none of that name.
    QPixmap modPicture(std::string_view name, qreal devicePixelRatio);
    /// Null for a status without a picture.
    QPixmap statusPicture(std::int32_t status, qreal devicePixelRatio);
    /// What a status means, for the legend and for screen readers; empty for one without a picture.
    static QString statusMeaning(std::int32_t status);

private:
    bool canBeShown(const std::string& layoutName) const;

    const AppFolder& m_folder;
    PictureStore& m_pictures;
};
