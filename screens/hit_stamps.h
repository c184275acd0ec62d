// Hit outlines kept as pixels. Every hit of one display list at one angle has the same outline; at
// one scale it differs from hit to hit only by where it falls inside its pixel. So the outline is
// painted once for each of a few places inside the pixel (`StampPhases` a side), kept as the
// coverage of the pixels it touches, and each further hit there is a blend of those pixels in
// its colour: the same picture as painting the outline again, at a small part of the cost.
#pragma once

#include <QImage>
#include <QRect>
#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "plot/canvas.h"

namespace kirvana {

// Places inside a pixel, on each axis, that a hit's outline is painted at: a hit stands at most
// half of a 1/StampPhases pixel away from the place of its stamp.
inline constexpr int StampPhases = 8;

// One outline painted at one place: the coverage (1 to 255) of each pixel it touches, by the
// pixel's offset from the pixel the hit stands in.
struct HitStamp {
    struct Pixel {
        std::int16_t Dx = 0, Dy = 0;
        std::uint8_t Coverage = 0;
    };
    std::vector<Pixel> Pixels;
    QRect Bounds;  // the offsets' rectangle
    bool Made = false;
};

// The pixels of a painted outline: `coverage` holds it in its alpha, the hit standing at pixel
// (anchorX, anchorY).
HitStamp StampOf(const QImage& coverage, int anchorX, int anchorY);

// Blends the stamp in `colour` into an image of 32-bit pixels (RGB32 or premultiplied ARGB32)
// with the hit at pixel (x, y); nothing outside `clip` changes.
void PlaceStamp(const HitStamp& stamp, QImage& image, QRect clip, int x, int y, QRgb colour);

// The stamps of one scale of one picture, by outline and place.
class HitStamps {
public:
    // Forgets every stamp when the scale or the smoothing differ from those the stamps were made at.
    void Use(double scaleX, double scaleY, bool smooth);
    // The stamp of the outline at the place (phaseX, phaseY); not `Made` until it is painted.
    // The reference holds until the next call.
    HitStamp& Of(const HitShape& shape, int phaseX, int phaseY);
    // Keeps a painted stamp in the place `Of` gave.
    void Keep(HitStamp& place, HitStamp stamp);

private:
    struct Key {
        std::int64_t List = 0;
        double Angle = 0;
        bool Filled = false;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    using Places = std::array<HitStamp, StampPhases * StampPhases>;

    double scaleX_ = 0, scaleY_ = 0;
    bool smooth_ = false;
    std::unordered_map<Key, std::unique_ptr<Places>, KeyHash> stamps_;
    std::size_t pixelsKept_ = 0;
    Key lastKey_;
    Places* last_ = nullptr;
};

}  // namespace kirvana
