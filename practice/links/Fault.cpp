#include "practice/links/Fault.h"

#include <QList>

#include <array>

namespace practice {

namespace {

struct FaultName
{
    const char* name;
    int minNumbers;
    int maxNumbers;
    Fault (*make)(int first, int second);
};

using std::chrono::milliseconds;

constexpr std::array<FaultName, 17> faultNames{{
    {"none", 0, 0, [](int, int) { return Fault::none(); }},
    {"chunks", 1, 2, [](int bytes, int gap) { return Fault::chunks(bytes, milliseconds(gap)); }},
    {"late", 1, 1, [](int delay, int) { return Fault::late(milliseconds(delay)); }},
    {"never", 0, 0, [](int, int) { return Fault::never(); }},
    {"twice", 0, 0, [](int, int) { return Fault::twice(); }},
    {"cutoff", 1, 1, [](int bytes, int) { return Fault::cutOffAfter(bytes); }},
    {"silent", 1, 1, [](int bytes, int) { return Fault::silentAfter(bytes); }},
    {"reset", 0, 0, [](int, int) { return Fault::reset(); }},
    {"garbage", 0, 1, [](int seed, int) { return Fault::garbage(seed); }},
    {"element", 1, 1, [](int n, int) { return Fault::garbageInElement(n); }},
    {"wrongprefix", 0, 0, [](int, int) { return Fault::wrongPrefix(); }},
    {"hugeprefix", 0, 0, [](int, int) { return Fault::hugePrefix(); }},
    {"nomarkers", 0, 0, [](int, int) { return Fault::noMarkers(); }},
    {"noend", 0, 0, [](int, int) { return Fault::noEnd(); }},
    {"empty", 0, 0, [](int, int) { return Fault::emptyBody(); }},
    {"news", 0, 0, [](int, int) { return Fault::newsFirst(); }},
    {"newsinside", 0, 0, [](int, int) { return Fault::newsWithin(); }},
}};

} // namespace

std::optional<Fault> Fault::parse(const QByteArray& text)
{
    const QList<QByteArray> parts = text.split(':');
    const qsizetype numbers = parts.size() - 1;
    for (const FaultName& known : faultNames) {
        if (parts.front() != known.name)
            continue;
        if (numbers < known.minNumbers || numbers > known.maxNumbers)
            return std::nullopt;
        std::array<int, 2> values{0, 0};
        for (qsizetype i = 0; i < numbers; ++i) {
            bool isNumber = false;
            const int value = parts[i + 1].toInt(&isNumber);
            if (!isNumber || value < 0)
                return std::nullopt;
            values[static_cast<std::size_t>(i)] = value;
        }
        return known.make(values[0], values[1]);
    }
    return std::nullopt;
}

QByteArray Fault::names()
{
    QByteArray all;
    for (const FaultName& known : faultNames) {
        if (!all.isEmpty())
            all += ", ";
        all += known.name;
        for (int i = 0; i < known.minNumbers; ++i)
            all += ":N";
        for (int i = known.minNumbers; i < known.maxNumbers; ++i)
            all += "[:N]";
    }
    return all;
}

} // namespace practice
