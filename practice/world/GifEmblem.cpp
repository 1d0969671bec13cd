#include "practice/world/GifEmblem.h"

#include <array>
#include <string_view>

namespace practice {

namespace {

constexpr int side = 16;
using Picture = std::array<std::string_view, side>;
using Palette = std::array<unsigned char, 8 * 3>;

// '.' is the transparent ground, '1' to '7' are the palette's other colours: outline, three body tones from dark to
// light, two symbol tones, white.
constexpr Picture shield{
    "................", ".11111111111111.", ".14444443333331.", ".14444773333321.",
    ".14444773333321.", ".14477777733321.", ".14457777633321.", ".14445776333221.",
    "..144577633221..", "..144756733221..", "..147533673221..", "...1443332221...",
    "....14333221....", ".....133221.....", "......1321......", ".......11.......",
};
constexpr Picture parachute{
    ".....111111.....", "...1144433211...", "..144744332221..", ".14474443322221.",
    ".14474443322221.", "1447444433222221", "1111114411111111", ".5...15..15...5.",
    "..5..5....5..5..", "...5.5....5.5...", "....55.11.55....", ".....51661 5....",
    "......1661......", "......1771......", "......1..1......", "................",
};
constexpr Picture crosshair{
    ".......11.......", ".....111111.....", "...1133113311...", "..133441144331..",
    "..134..11..431..", ".134...11...431.", ".13....11....31.", "1111111551111111",
    "1111111551111111", ".13....11....31.", ".134...11...431.", "..134..11..431..",
    "..133441144331..", "...1133113311...", ".....111111.....", ".......11.......",
};
constexpr Palette green{0,   0,   0,  24,  40,  24, 52,  84,  44, 84,  124, 64,
                        132, 172, 96, 176, 132, 32, 232, 192, 72, 255, 255, 240};
constexpr Palette blue{0,   0,   0,   16, 28, 56, 36,  72,  132, 64,  112, 184,
                       120, 168, 228, 72, 72, 72, 200, 164, 96,  255, 255, 255};
constexpr Palette red{0,   0,  0,  56,  12,  12, 120, 24,  20, 176, 44,  32,
                      224, 96, 72, 208, 168, 40, 248, 216, 96, 255, 255, 255};

/// Packs codes of four bits, the first into the low half.
class NibbleWriter
{
public:
    void put(int code)
    {
        if (m_half) {
            m_bytes.back() = static_cast<char>(m_bytes.back() | static_cast<char>(code << 4));
        } else {
            m_bytes += static_cast<char>(code);
        }
        m_half = !m_half;
    }
    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    bool m_half = false;
};

/// Eight colours take three bits, so that codes begin at four. The table is cleared before it could fill up to where
/// codes would grow: every pixel is its own code.
QByteArray pixelData(const Picture& picture)
{
    constexpr int clear = 8;
    constexpr int end = 9;
    constexpr int pixelsBetweenClears = 5;
    NibbleWriter writer;
    int written = 0;
    for (const std::string_view row : picture) {
        for (const char pixel : row) {
            if (written++ % pixelsBetweenClears == 0)
                writer.put(clear);
            writer.put(pixel >= '1' && pixel <= '7' ? pixel - '0' : 0);
        }
    }
    writer.put(end);
    return writer.bytes();
}

QByteArray gif(const Picture& picture, const Palette& palette)
{
    QByteArray file("GIF89a");
    file.append("\x10\x00\x10\x00\xA2\x00\x00", 7); // 16 by 16, table of eight colours
    file.append(reinterpret_cast<const char*>(palette.data()), static_cast<qsizetype>(palette.size()));
    file.append("\x21\xF9\x04\x01\x00\x00\x00\x00", 8);              // colour 0 is transparent
    file.append("\x2C\x00\x00\x00\x00\x10\x00\x10\x00\x00\x03", 11); // one image, codes from three bits
    const QByteArray data = pixelData(picture);
    constexpr qsizetype blockSize = 255;
    for (qsizetype at = 0; at < data.size(); at += blockSize) {
        const QByteArray block = data.mid(at, blockSize);
        file += static_cast<char>(block.size());
        file += block;
    }
    file.append("\x00\x3B", 2); // end of image, end of file
    return file;
}

} // namespace

QByteArray gifEmblem(Emblem emblem)
{
    switch (emblem) {
    case Emblem::Shield:
        return gif(shield, green);
    case Emblem::Parachute:
        return gif(parachute, blue);
    case Emblem::Crosshair:
        return gif(crosshair, red);
    }
    return {};
}

} // namespace practice
