#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QString>
#include <QWidget>

namespace tour {

/// Takes pictures of the program's windows as they stand on the screen, frames and open menus included. Where the
/// screen cannot be read, it lays pictures of the windows over each other.
class Camera
{
public:
    /// @param folder  exists
    explicit Camera(const QDir& folder) : m_folder(folder) {}

    /// Forgets what was seen, and removes an older picture of that name.
    void prepare(const QString& file);
    /// Looks once, and saves the picture when the view has come to rest. To be called again until it is true.
    bool take(const QString& file);
    /// Saves the view as it is, at rest or not.
    void takeAtOnce(const QString& file);

private:
    QDir m_folder;
    QImage m_seen;
    QElapsedTimer m_sinceChange;
};

} // namespace tour
