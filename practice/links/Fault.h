#pragma once

#include <QByteArray>
#include <QMetaType>

#include <chrono>
#include <optional>

namespace practice {

/// One way in which the tracker misbehaves while it answers a request. The default is none at all.
class Fault
{
public:
    enum class Kind {
        None,
        Chunks,
        Late,
        Never,
        Twice,
        CutOff,
        Silent,
        Reset,
        Garbage,
        GarbageElement,
        WrongPrefix,
        HugePrefix,
        NoMarkers,
        NoEnd,
        EmptyBody,
        NewsFirst,
        NewsWithin,
    };

    Fault() = default;

    static Fault none() { return {}; }
    /// The framed reply in pieces of `bytes`, each written on its own, `gap` apart (one event-loop turn when 0).
    static Fault chunks(int bytes, std::chrono::milliseconds gap = {}) { return {Kind::Chunks, bytes, gap}; }
    static Fault late(std::chrono::milliseconds delay) { return {Kind::Late, 0, delay}; }
    static Fault never() { return {Kind::Never}; }
    /// The framed reply two times back to back.
    static Fault twice() { return {Kind::Twice}; }
    /// The first `bytes` of the framed reply, then an orderly close.
    static Fault cutOffAfter(int bytes) { return {Kind::CutOff, bytes}; }
    /// The first `bytes` of the framed reply, then nothing more; the link stays open.
    static Fault silentAfter(int bytes) { return {Kind::Silent, bytes}; }
    /// No reply: the connection is reset.
    static Fault reset() { return {Kind::Reset}; }
    /// A well-framed body of 64 bytes that `seed` alone determines.
    static Fault garbage(int seed = 1) { return {Kind::Garbage, seed}; }
    /// Element `n`, counted from 0, of the reply's "_"-joined elements becomes bytes that are no Base64.
    static Fault garbageInElement(int n) { return {Kind::GarbageElement, n}; }
    /// Seven letters stand where the length belongs.
    static Fault wrongPrefix() { return {Kind::WrongPrefix}; }
    /// The prefix announces 9,999,999 bytes whatever follows.
    static Fault hugePrefix() { return {Kind::HugePrefix}; }
    /// The prefix and the bare body, without "[ST]" and "[ND]".
    static Fault noMarkers() { return {Kind::NoMarkers}; }
    /// A reply whose "[ND]" never comes.
    static Fault noEnd() { return {Kind::NoEnd}; }
    /// A well-framed reply with nothing in it.
    static Fault emptyBody() { return {Kind::EmptyBody}; }
    /// A plugin's message in front of the reply, two whole replies back to back.
    static Fault newsFirst() { return {Kind::NewsFirst}; }
    /// A plugin's message in front of the answer inside one reply: one prefix, then two messages, each with its "[ST]"
    /// and "[ND]".
    static Fault newsWithin() { return {Kind::NewsWithin}; }

    /// Reads a fault as the command line writes it: its name and, where it takes one, a number behind a colon
    /// ("reset", "chunks:9", "chunks:256:20" with a gap in milliseconds, "late:500").
    static std::optional<Fault> parse(const QByteArray& text);
    /// All texts that parse() knows, for a usage line.
    static QByteArray names();

    Kind kind() const { return m_kind; }
    /// Bytes, element or seed, as the kind has it.
    int number() const { return m_number; }
    /// How late, or the gap between two chunks.
    std::chrono::milliseconds delay() const { return m_delay; }

    friend bool operator==(const Fault&, const Fault&) = default;

private:
    Fault(Kind kind, int number = 0, std::chrono::milliseconds delay = {})
        : m_kind(kind),
          m_number(number),
          m_delay(delay)
    {}

    Kind m_kind = Kind::None;
    int m_number = 0;
    std::chrono::milliseconds m_delay{0};
};

} // namespace practice

Q_DECLARE_METATYPE(practice::Fault)
