#pragma once

#include <QByteArray>
#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSize>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

class AppFolder;

/// The pictures of the application folder, by layout name such as "\imgs\butup.gif". Each is decoded at the size that
/// it is shown in, and again when its file has changed; those that were shown last are kept. The files may come from
/// the host, so they are bounded and only GIF, PNG, JPEG and BMP contents are decoded, whatever a file's name says.
class PictureStore
{
public:
    static constexpr std::uintmax_t maxFileBytes = 1024 * 1024;
    static constexpr int maxSide = 2048; ///< pixels, either way

    /// Whether these bytes begin like a picture that can be shown, of at most `maxSide` pixels either way.
    static bool isPicture(std::string_view bytes, int maxSide);

    using MissingReport = std::function<void(const std::string& layoutName)>;

    /// @param folder         outlives the store
    /// @param reportMissing  called once a run for each picture that was wanted and cannot be shown; from the event
    ///                       loop, never from inside the call that wanted it, so it may open a box; may be empty
    explicit PictureStore(const AppFolder& folder, MissingReport reportMissing = {});

    /// The picture scaled smoothly to `logical` device-independent pixels at `devicePixelRatio`; null when there
    /// is none, when it breaks a bound or does not decode.
    QPixmap scaled(std::string_view layoutName, QSize logical, qreal devicePixelRatio,
                   Qt::AspectRatioMode aspect = Qt::IgnoreAspectRatio);

private:
    struct FileStamp
    {
        std::filesystem::file_time_type changed;
        std::uintmax_t bytes = 0;
        bool operator==(const FileStamp&) const = default;
    };
    /// What is wanted of which picture.
    struct Key
    {
        QByteArray name; ///< in lower case
        QSize pixels;
        Qt::AspectRatioMode aspect;
        bool operator==(const Key&) const = default;
        friend size_t qHash(const Key& key, size_t seed)
        {
            return qHashMulti(seed, key.name, key.pixels.width(), key.pixels.height(), key.aspect);
        }
    };
    struct Shown
    {
        std::filesystem::path path;
        FileStamp stamp;
        QPixmap pixmap; ///< null when the file holds nothing that may be shown
    };

    std::optional<Shown> load(std::string_view layoutName, QSize pixels, Qt::AspectRatioMode aspect) const;
    static std::optional<FileStamp> stampOf(const std::filesystem::path& path);
    static QPixmap decode(const std::filesystem::path& path, QSize pixels, Qt::AspectRatioMode aspect);
    void report(std::string_view layoutName);

    const AppFolder& m_folder;
    MissingReport m_reportMissing;
    std::unordered_set<std::string> m_reported;
    QCache<Key, Shown> m_shown; ///< costs in KiB
    QObject m_reportContext;    ///< pending reports end with the store
};
