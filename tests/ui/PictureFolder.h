#pragma once

#include "store/AppFolder.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

/// A temporary application folder with pictures in it.
class PictureFolder
{
public:
    PictureFolder() : m_folder(m_directory.path().toStdString())
    {
        QDir(m_directory.path()).mkdir(QStringLiteral("imgs"));
    }

    const AppFolder& folder() const { return m_folder; }
    QString path(const QString& file) const { return m_directory.filePath(file); }

    /// Writes a picture of one colour; the content is PNG whatever the name says.
    void paint(const QString& file, QColor colour, QSize size = {8, 8}) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        image.save(path(file), "PNG");
    }

private:
    QTemporaryDir m_directory;
    AppFolder m_folder;
};
