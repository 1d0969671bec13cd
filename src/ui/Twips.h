#pragma once

/// Lengths of window layouts: 1440 twips an inch, 15 a pixel.
struct Twips
{
    static constexpr int perPixel = 15;

    int value = 0;

    static constexpr Twips fromPixels(int pixels) { return {pixels * perPixel}; }
    /// Rounded to the nearest pixel.
    constexpr int pixels() const
    {
        return value < 0 ? -((perPixel / 2 - value) / perPixel) : (value + perPixel / 2) / perPixel;
    }

    friend constexpr Twips operator+(Twips left, Twips right) { return {left.value + right.value}; }
    friend constexpr Twips operator-(Twips left, Twips right) { return {left.value - right.value}; }
    friend constexpr bool operator==(Twips, Twips) = default;
};

consteval Twips operator""_twips(unsigned long long value)
{
    return {static_cast<int>(value)};
}
