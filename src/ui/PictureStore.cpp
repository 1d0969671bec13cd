#include "ui/PictureStore.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "store/AppFolder.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QTimer>

#include <array>
#include <chrono>

namespace {

constexpr int scaledCacheKiB = 16 * 1024;

bool isKnownFormat(const QByteArray& format)
{
    constexpr std::array known{"gif", "png", "jpeg", "jpg", "bmp"};
    return std::find(known.begin(), known.end(), format) != known.end();
}

bool isBounded(QSize size)
{
    return size.isValid() && !size.isEmpty() && size.width() <= PictureStore::maxSide &&
           size.height() <= PictureStore::maxSide;
}

} // namespace

PictureStore::PictureStore(const AppFolder& folder, MissingReport reportMissing)
    : m_folder(folder),
      m_reportMissing(std::move(reportMissing)),
      m_scaled(scaledCacheKiB)
{}

QPixmap PictureStore::picture(std::string_view layoutName)
{
    // Paint events come here, so what is known costs one look at the file and no search of the folder.
    Source& source = m_sources[lowerAscii(layoutName)];
    std::optional<FileStamp> stamp = stampOf(source.path);
    if (!stamp) {
        source = {};
        try {
            source.path = m_folder.path(layoutName);
            stamp = stampOf(source.path);
        } catch (const RuntimeError&) {
            // A name that leaves the folder names no picture.
        }
    }
    if (!stamp) {
        report(layoutName);
        return {};
    }
    if (source.stamp != *stamp) {
        source.stamp = *stamp;
        source.pixmap = decode(source.path);
    }
    if (source.pixmap.isNull())
        report(layoutName);
    return source.pixmap;
}

QPixmap PictureStore::scaled(std::string_view layoutName, QSize logical, qreal devicePixelRatio,
                             Qt::AspectRatioMode aspect)
{
    const QSize pixels = (QSizeF(logical) * devicePixelRatio).toSize();
    const QPixmap original = picture(layoutName);
    if (original.isNull() || pixels.isEmpty())
        return {};
    const ScaledKey key{original.cacheKey(), pixels, qRound(devicePixelRatio * 100), aspect};
    if (const QPixmap* known = m_scaled.object(key))
        return *known;
    QPixmap result = original.scaled(pixels, aspect, Qt::SmoothTransformation);
    result.setDevicePixelRatio(devicePixelRatio);
    const qsizetype costKiB = 1 + qsizetype(result.width()) * result.height() * 4 / 1024;
    m_scaled.insert(key, new QPixmap(result), costKiB);
    return result;
}

std::optional<PictureStore::FileStamp> PictureStore::stampOf(const std::filesystem::path& path)
{
    std::error_code error;
    if (path.empty() || !std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    FileStamp stamp;
    stamp.changed = std::filesystem::last_write_time(path, error);
    if (error)
        return std::nullopt;
    stamp.bytes = std::filesystem::file_size(path, error);
    if (error)
        return std::nullopt;
    return stamp;
}

QPixmap PictureStore::decode(const std::filesystem::path& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray content = file.read(qint64(maxFileBytes) + 1);
    if (content.size() > qint64(maxFileBytes))
        return {};
    QBuffer buffer(&content);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // The size is known from the head of the file; nothing is decoded before it has been judged.
    if (!isKnownFormat(reader.format()) || !isBounded(reader.size()))
        return {};
    const QImage image = reader.read();
    if (!isBounded(image.size()))
        return {};
    return QPixmap::fromImage(image);
}

void PictureStore::report(std::string_view layoutName)
{
    if (!m_reportMissing || !m_reported.insert(lowerAscii(layoutName)).second)
        return;
    QTimer::singleShot(std::chrono::milliseconds(0), &m_reportContext,
                       [this, name = std::string(layoutName)] { m_reportMissing(name); });
}
