#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

/// How much and how often the program takes from a host, a list, a plugin or a file before it stops taking. All of it
/// stands here; whoever keeps to a bound is handed these and may be handed smaller ones.
struct Bounds
{
    static constexpr std::size_t kibibyte = 1024;
    static constexpr std::size_t mebibyte = 1024 * kibibyte;

    /// Bytes of one reply; beyond it the link is closed.
    std::size_t replyBytes = 256 * mebibyte;
    /// Malformed messages on one link within a minute; the one that makes the number full closes it.
    int protocolFaultsPerMinute = 20;

    /// Bytes of a list when expanded, and its rows; what is beyond is cut, and said so beside the list.
    std::size_t listBytes = 32 * mebibyte;
    std::size_t listRows = 100'000;
    /// Entries of a list that is short by nature: processes, the tracker's plugins, privileges, a profile's scripts.
    /// With more of them the reply is damaged.
    std::size_t shortListEntries = 4096;
    /// Bytes of a log text when expanded, and how many times what arrived; more is refused.
    std::size_t logTextBytes = 256 * mebibyte;
    std::size_t expansionFactor = 1032;

    /// Boxes that wait for the one that is open; of those beyond a sum is told at the end.
    std::size_t waitingBoxes = 8;
    /// How long an error that is logged and reported stands for all that are equal to it; they are counted.
    std::chrono::seconds equalErrorsPeriod = std::chrono::minutes(10);
    /// Different errors that are told apart within that period; those beyond are counted only.
    std::size_t differentErrors = 512;
    /// Error reports that go out by themselves within a minute; those beyond are counted in the next one.
    int reportsPerMinute = 5;
    /// Bytes of an error's description; the rest is cut.
    std::size_t descriptionBytes = 4 * kibibyte;
    /// Bytes of the error log; before it grows beyond them it takes the place of the one older log.
    std::size_t errorLogBytes = 8 * mebibyte;

    /// Bytes of a mod picture, points along each of its sides, and how many are kept; others are left out.
    std::size_t modPictureBytes = 64 * kibibyte;
    int modPictureSide = 512;
    std::size_t modPictures = 512;
    /// Profiles that get a folder of their own.
    std::size_t profileFolders = 10'000;
    /// Bytes of a help page, its tags, elements within elements, tables within tables (each of which halves
    /// the bytes), cells of its tables, its pictures and all their points, and the rules of its styles; beyond
    /// them it is shown as text.
    /// What counts is how long the layout takes: a second at most.
    std::size_t helpPageBytes = 1 * mebibyte;
    std::size_t helpTags = 20'000;
    std::size_t helpNesting = 2'000;
    int helpTableNesting = 8;
    std::size_t helpTableCells = 10'000;
    std::size_t helpPictures = 1'000;
    std::int64_t helpPicturePoints = 16'000'000;
    std::size_t helpStyleRules = 100;
    /// Bytes of a help page that are shown as text; and places of a page in which searched words are marked.
    std::size_t helpTextBytes = 128 * kibibyte;
    std::size_t helpMarks = 1'000;
    /// Bytes of the support conversation, and its lines, each of which the console lays out by itself; the oldest
    /// messages go.
    std::size_t conversationBytes = 16 * mebibyte;
    std::size_t conversationLines = 100'000;
    /// Lines of one message of it; the rest is cut, and the message says so.
    std::size_t messageLines = 10'000;

    /// Bytes of a download whose size no list tells; more is refused.
    std::size_t downloadBytes = 512 * mebibyte;
    /// Bytes of an update list, and its records; more is refused.
    std::size_t updateListBytes = 1 * mebibyte;
    std::size_t updateListRecords = 20'000;

    /// Bytes of one licence text that lies beside the program, and how many of them are listed.
    std::size_t licenceBytes = 1 * mebibyte;
    std::size_t licences = 100;
};
