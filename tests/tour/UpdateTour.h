#pragma once

#include "tour/Act.h"

namespace practice {
class UpdatePages;
class WebSide;
} // namespace practice

namespace tour {

/// The day on which the maker has something new: the start tells of it, the administrator looks, downloads, meets the
/// mishaps that a download can have, and looks at the options and his plugins.
class UpdateTour : public Act
{
public:
    /// Fills the folder with settings and a plugin, and the web host with offers.
    /// @param frame     not started yet; outlives the tour, as the rest does
    /// @param web       the frame's maker host
    /// @param folder    the frame's application folder
    /// @param examples  folder of the example plugins
    /// @param pictures  folder that exists
    UpdateTour(qrvrcMain& frame, practice::WebSide& web, const QDir& folder, const QDir& examples,
               const QDir& pictures);

    /// Name, in the frame's folder, of what stands for the running program.
    static QString programName();

private:
    void layOut(const QDir& folder, const QDir& examples);
    void offerUpdates();
    void beTold();
    void lookAtUpdates();
    void download();
    void meetErrors();
    void findNothing();
    void setOptions();
    void lookAtPlugins();

    practice::UpdatePages& m_pages;
};

} // namespace tour
