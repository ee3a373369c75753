#pragma once

#include <algorithm>

namespace vyn {

// Places and sizes in pixels. Right and bottom edges lie outside.
struct TPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const TPoint&, const TPoint&) = default;
};

struct TSize {
    int cx = 0;
    int cy = 0;
    friend bool operator==(const TSize&, const TSize&) = default;
};

struct TRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    int Width() const { return Right - Left; }
    int Height() const { return Bottom - Top; }
    bool Contains(TPoint at) const { return at.x >= Left && at.x < Right && at.y >= Top && at.y < Bottom; }
    bool Empty() const { return Right <= Left || Bottom <= Top; }
    friend bool operator==(const TRect&, const TRect&) = default;
};

inline TPoint Point(int x, int y) { return {x, y}; }
inline TRect Rect(int left, int top, int right, int bottom) { return {left, top, right, bottom}; }
inline TRect Bounds(int left, int top, int width, int height) { return {left, top, left + width, top + height}; }

// Controls lie within so many pixels and are no larger, whatever a stored form says: sums of a few such numbers are
// numbers still.
constexpr int MaximumExtent = 1 << 24;
inline int WithinExtent(int pixels) { return std::clamp(pixels, -MaximumExtent, MaximumExtent); }

// number * numerator / denominator, rounded to the nearest; 0 for a zero denominator.
inline int MulDiv(int number, int numerator, int denominator) {
    if (denominator == 0) return 0;
    const long long product = static_cast<long long>(number) * numerator;
    const long long half = (denominator < 0 ? -static_cast<long long>(denominator) : denominator) / 2;
    return static_cast<int>((product >= 0 ? product + half : product - half) / denominator);
}

}  // namespace vyn
