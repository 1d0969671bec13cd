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

constexpr int cacheKiB = 16 * 1024;

/// Told by how the content begins, so that no other decoder is asked, or even loaded. Empty for what is not shown.
QByteArray formatOf(const QByteArray& content)
{
    struct Format
    {
        QByteArrayView begin;
        const char* name;
    };
    constexpr std::array known{Format{"GIF8", "gif"}, Format{"\x89PNG", "png"}, Format{"\xFF\xD8\xFF", "jpeg"},
                               Format{"BM", "bmp"}};
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&content](const Format& format) { return content.startsWith(format.begin); });
    return found == known.end() ? QByteArray() : QByteArray(found->name);
}

/// The size is known from the head of a file: nothing is decoded before it has been judged.
bool isAllowed(QImageReader& reader, int maxSide)
{
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    return !size.isEmpty() && size.width() <= maxSide && size.height() <= maxSide;
}

} // namespace

PictureStore::PictureStore(const AppFolder& folder, MissingReport reportMissing)
    : m_folder(folder),
      m_reportMissing(std::move(reportMissing)),
      m_shown(cacheKiB)
{}

bool PictureStore::isPicture(std::string_view bytes, int maxSide)
{
    QByteArray content = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&content);
    QImageReader reader(&buffer, formatOf(content));
    return isAllowed(reader, maxSide);
}

QPixmap PictureStore::scaled(std::string_view layoutName, QSize logical, qreal devicePixelRatio,
                             Qt::AspectRatioMode aspect)
{
    const QSize pixels = (QSizeF(logical) * devicePixelRatio).toSize();
    if (pixels.isEmpty())
        return {};
    // Paint events come here, so what is known costs one look at the file and no search of the folder.
    const Key key{QByteArray::fromStdString(lowerAscii(layoutName)), pixels, aspect};
    const Shown* known = m_shown.object(key);
    QPixmap found;
    if (known && stampOf(known->path) == known->stamp) {
        found = known->pixmap;
    } else if (const std::optional<Shown> fresh = load(layoutName, pixels, aspect)) {
        found = fresh->pixmap;
        const qsizetype costKiB = 1 + qsizetype(found.width()) * found.height() * 4 / 1024;
        m_shown.insert(key, new Shown(*fresh), costKiB);
    }
    if (found.isNull())
        report(layoutName);
    found.setDevicePixelRatio(devicePixelRatio);
    return found;
}

std::optional<PictureStore::Shown> PictureStore::load(std::string_view layoutName, QSize pixels,
                                                      Qt::AspectRatioMode aspect) const
{
    try {
        const std::filesystem::path path = m_folder.path(layoutName);
        if (const std::optional<FileStamp> stamp = stampOf(path))
            return Shown{path, *stamp, decode(path, pixels, aspect)};
    } catch (const RuntimeError&) {
        // A name that leaves the folder names no picture.
    }
    return {};
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

QPixmap PictureStore::decode(const std::filesystem::path& path, QSize pixels, Qt::AspectRatioMode aspect)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray content = file.read(qint64(maxFileBytes) + 1);
    if (content.size() > qint64(maxFileBytes))
        return {};
    QBuffer buffer(&content);
    QImageReader reader(&buffer, formatOf(content));
    if (!isAllowed(reader, maxSide))
        return {};
    const QSize shown = reader.size().scaled(pixels, aspect);
    reader.setScaledSize(shown.expandedTo({1, 1}));
    return QPixmap::fromImage(reader.read());
}

void PictureStore::report(std::string_view layoutName)
{
    if (!m_reportMissing || !m_reported.insert(lowerAscii(layoutName)).second)
        return;
    QTimer::singleShot(std::chrono::milliseconds(0), &m_reportContext,
                       [this, name = std::string(layoutName)] { m_reportMissing(name); });
}
