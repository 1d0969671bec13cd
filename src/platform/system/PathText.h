#pragma once

#include <QString>

#include <filesystem>

/// A path as Unicode text, whatever the system keeps it in.
inline QString textOf(const std::filesystem::path& path)
{
    return QString::fromStdU16String(path.u16string());
}

inline std::filesystem::path pathOf(const QString& text)
{
    return std::filesystem::path(text.toStdU16String());
}
