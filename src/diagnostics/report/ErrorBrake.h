#pragma once

#include "base/Bounds.h"
#include "base/RateLimit.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>

/// What makes errors equal.
struct ErrorKey
{
    std::string procedure;
    std::int32_t number = 0;
    std::string text;

    bool operator==(const ErrorKey&) const = default;
    bool operator<(const ErrorKey& other) const
    {
        return std::tie(procedure, number, text) < std::tie(other.procedure, other.number, other.text);
    }
};

/// Decides which errors are logged and which reports go out by themselves, and counts those that are held back.
class ErrorBrake
{
public:
    using Time = RateLimit::Clock::time_point;

    explicit ErrorBrake(const Bounds& bounds) : m_bounds(bounds) {}

    /// An error has happened.
    /// @return how many equal ones were held back before this one, which is to be logged; nothing when it is held back
    std::optional<std::size_t> admitError(const ErrorKey& error, Time now);
    /// A report is about to go out by itself.
    /// @return how many were held back before this one, which may go; nothing when it is held back
    std::optional<std::size_t> admitReport(Time now);

private:
    struct Equal
    {
        Time admitted;
        std::size_t heldBack = 0;
    };

    Bounds m_bounds;
    std::map<ErrorKey, Equal> m_errors;
    RateLimit m_reports{std::chrono::minutes(1)};
    std::size_t m_reportsHeldBack = 0;
};
