#include "screens/hit_stamps.h"

#include <functional>

namespace kirvana {

namespace {

// Outlines of this many different lists and angles are kept at most: arcs of hits turned by the C
// axis give each hit an angle of its own, and their stamps are of no use to another hit.
constexpr std::size_t MaxOutlinesKept = 4096;
// And so many pixels of stamps at most (some 20 MB): large solid hits at many angles and places
// would fill the memory otherwise.
constexpr std::size_t MaxPixelsKept = 4'000'000;

// a x s + (255 - a) x d, each of the four bytes divided by 255 and rounded.
inline QRgb Blend(QRgb s, QRgb d, std::uint32_t a) {
    const std::uint32_t b = 255 - a;
    std::uint32_t low = (s & 0xff00ff) * a + (d & 0xff00ff) * b;
    low = ((low + ((low >> 8) & 0xff00ff) + 0x800080) >> 8) & 0xff00ff;
    std::uint32_t high = ((s >> 8) & 0xff00ff) * a + ((d >> 8) & 0xff00ff) * b;
    high = (high + ((high >> 8) & 0xff00ff) + 0x800080) & 0xff00ff00;
    return low | high;
}

}  // namespace

HitStamp StampOf(const QImage& coverage, int anchorX, int anchorY) {
    HitStamp stamp;
    stamp.Made = true;
    int left = coverage.width(), top = coverage.height(), right = -1, bottom = -1;
    for (int y = 0; y < coverage.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(coverage.constScanLine(y));
        for (int x = 0; x < coverage.width(); ++x) {
            const int a = qAlpha(line[x]);
            if (a == 0) continue;
            stamp.Pixels.push_back({static_cast<std::int16_t>(x - anchorX), static_cast<std::int16_t>(y - anchorY),
                                    static_cast<std::uint8_t>(a)});
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right >= 0)
        stamp.Bounds = QRect(QPoint(left - anchorX, top - anchorY), QPoint(right - anchorX, bottom - anchorY));
    return stamp;
}

void PlaceStamp(const HitStamp& stamp, QImage& image, QRect clip, int x, int y, QRgb colour) {
    if (stamp.Pixels.empty()) return;
    clip &= image.rect();
    const QRect reach = stamp.Bounds.translated(x, y);
    if (!clip.intersects(reach)) return;
    colour |= 0xff000000u;
    uchar* bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    auto at = [&](int px, int py) { return reinterpret_cast<QRgb*>(bits + py * stride) + px; };
    if (clip.contains(reach)) {
        for (const HitStamp::Pixel& p : stamp.Pixels) {
            QRgb* d = at(x + p.Dx, y + p.Dy);
            *d = p.Coverage == 255 ? colour : Blend(colour, *d, p.Coverage);
        }
        return;
    }
    for (const HitStamp::Pixel& p : stamp.Pixels) {
        const int px = x + p.Dx, py = y + p.Dy;
        if (!clip.contains(px, py)) continue;
        QRgb* d = at(px, py);
        *d = Blend(colour, *d, p.Coverage);
    }
}

void HitStamps::Use(double scaleX, double scaleY, bool smooth) {
    if (scaleX == scaleX_ && scaleY == scaleY_ && smooth == smooth_) return;
    stamps_.clear();
    pixelsKept_ = 0;
    last_ = nullptr;
    scaleX_ = scaleX;
    scaleY_ = scaleY;
    smooth_ = smooth;
}

std::size_t HitStamps::KeyHash::operator()(const Key& key) const {
    return std::hash<std::int64_t>()(key.List) ^ (std::hash<double>()(key.Angle) * 31) ^
           (key.Filled ? 0x9e3779b9u : 0u);
}

HitStamp& HitStamps::Of(const HitShape& shape, int phaseX, int phaseY) {
    const Key key{shape.List, shape.Angle, shape.Filled};
    if (pixelsKept_ > MaxPixelsKept) {
        stamps_.clear();
        pixelsKept_ = 0;
        last_ = nullptr;
    }
    if (!last_ || !(key == lastKey_)) {
        auto found = stamps_.find(key);
        if (found == stamps_.end()) {
            if (stamps_.size() >= MaxOutlinesKept) {
                stamps_.clear();
                pixelsKept_ = 0;
            }
            found = stamps_.emplace(key, std::make_unique<Places>()).first;
        }
        last_ = found->second.get();
        lastKey_ = key;
    }
    return (*last_)[static_cast<std::size_t>(phaseY * StampPhases + phaseX)];
}

void HitStamps::Keep(HitStamp& place, HitStamp stamp) {
    pixelsKept_ += stamp.Pixels.size();
    place = std::move(stamp);
}

}  // namespace kirvana
