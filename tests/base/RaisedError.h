#pragma once

#include "base/RuntimeError.h"

#include <QtTest>

#include <string>
#include <utility>

/// The number of the RuntimeError that `body` ends in, 0 when it runs to its end.
template <typename Body>
int raisedBy(Body&& body)
{
    try {
        std::forward<Body>(body)();
        return 0;
    } catch (const RuntimeError& error) {
        return static_cast<int>(error.number());
    }
}

constexpr int numberOf(ErrorNumber number)
{
    return static_cast<int>(number);
}

namespace QTest {
/// Lets a failed comparison show the bytes of both sides.
template <>
inline char* toString(const std::string& text)
{
    return toPrettyCString(text.data(), static_cast<qsizetype>(text.size()));
}
} // namespace QTest
