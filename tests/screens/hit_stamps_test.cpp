// Hit outlines kept as stamps. A stamp placed again is the very pixels of the hit that made it, moved
// by whole pixels. A stamped hit is the outline Qt paints for the hit moved to the middle of its
// place inside the pixel (at most a sixteenth of a pixel): every inked pixel of the one has an
// inked pixel within a pixel in the other, and nearly all pixels are the same, whatever the
// shape, angle, fill, scale or clip (where they differ Qt's own choice of pixels is at stake: a
// line at 45 degrees is drawn along one axis or the other by the last bit of its ends). Outlines
// too large for a stamp are painted each time.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

#include "analysis/drawing_file.h"
#include "analysis/tool_outline.h"
#include "plot/plotter.h"
#include "screens/plot_canvas.h"

using namespace kirvana;

namespace {

const char* const Shapes[] = {"DIAMETER 10",        "SQUARE 10 A15",   "RAD-SQUARE 12R2A0", "RECTANGLE 20X8A30",
                              "RAD-RECT 20X8R2A45", "OBROUND 20X8A90", "SINGLE-D 12X10A0",  "DOUBLE-D 12X9A0",
                              "CANNON-D 20X8A0",    "HEXAGON 12A0",    "KEYWAY 12X15W3A0",  "LOUVRE 30X6A0",
                              "CRUCIFORM 16W4R1A0", "SQUARE 6 A45"};

struct Hit {
    int Shape = 0;
    double X = 0, Y = 0;  // millimetres
    double C = 0;         // the C angle
    bool Solid = false;
};

constexpr std::int32_t Yellow = 65535;

struct Painted {
    QImage Image;
    std::int64_t Placed = 0, Made = 0;
};

// The hits painted on a picture of `size` at `scale` pixels a millimetre. An RGB32 picture takes
// stamps; an ARGB32 one is painted outline by outline, as Qt paints each hit.
Painted Paint(QImage::Format format, QSize size, double scale, const std::vector<Hit>& hits, QRect clip = {},
              bool smooth = true) {
    ColourTable colours = DefaultColours();
    // Done hits are filled in the background's own colour by default; here in yellow, to be seen.
    colours.Values[static_cast<std::size_t>(ColourItem::PunchModeRealTimePunching)] = Yellow;
    Painted out;
    out.Image = QImage(size, format);
    out.Image.fill(PlotColour(colours[ColourItem::PlotBackground]));
    PlotCanvas canvas;
    canvas.SetSmooth(smooth);
    canvas.SetDevice(&out.Image, size);
    canvas.SetClip(clip);
    canvas.SetView({0, 0}, {size.width() / scale, size.height() / scale});
    Plotter plotter(canvas, colours, "");
    for (const Hit& hit : hits) {
        EntityRec rec;
        rec.Kind = EntityKind::Punch;
        ParseToolText(Shapes[hit.Shape], rec.Tool, false);
        rec.Tool.Station = 20;
        rec.Tool.Extra1 = static_cast<float>(hit.C);
        rec.Points.Position = {static_cast<float>(hit.X), static_cast<float>(hit.Y)};
        ToolOutline(rec);
        plotter.PlotEntity(1, rec, hit.Solid ? ColourMode::RealTime : ColourMode::Background, hit.Solid);
    }
    canvas.Finish();
    out.Placed = canvas.StampsPlaced();
    out.Made = canvas.StampsMade();
    out.Image = out.Image.convertToFormat(QImage::Format_RGB32);
    return out;
}

// The hit moved to the middle of its place inside its pixel: where its stamp stands.
Hit AtPlaceMiddle(Hit hit, double scale) {
    auto middle = [scale](double mm) {
        // The position as the picture's pixels see it: a single, as the drawing file keeps it.
        const double pixel = static_cast<float>(mm) * scale;
        const double whole = std::floor(pixel);
        const double place = std::floor((pixel - whole) * StampPhases);
        return (whole + (place + 0.5) / StampPhases) / scale;
    };
    hit.X = middle(hit.X);
    hit.Y = middle(hit.Y);
    return hit;
}

int Difference(QRgb p, QRgb q) {
    return std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
}

// Blending by our own rounding and by Qt's may differ by one in a colour.
constexpr int Rounding = 6;
// A pixel of an outline stands out from the background by more than this.
constexpr int Ink = 60;

// Every inked pixel of `a` has one within a pixel in `b`.
bool InkNear(const QImage& a, const QImage& b, QRgb background, QString& where) {
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            if (Difference(a.pixel(x, y), background) <= Ink) continue;
            bool near = false;
            for (int dy = -1; dy <= 1 && !near; ++dy)
                for (int dx = -1; dx <= 1 && !near; ++dx)
                    near = b.valid(x + dx, y + dy) && Difference(b.pixel(x + dx, y + dy), background) > Ink;
            if (!near) {
                where = QString("%1,%2").arg(x).arg(y);
                return false;
            }
        }
    return true;
}

// The stamped picture shows the outlines of the painted one: inked pixels within a pixel of
// each other both ways, and under `share` of the inked pixels differing beyond rounding.
void ExpectSameOutlines(const QImage& stamped, const QImage& painted, double share, const std::string& what) {
    const QRgb background = PlotColour(DefaultColours()[ColourItem::PlotBackground]).rgb();
    QString where;
    EXPECT_TRUE(InkNear(stamped, painted, background, where))
        << what << ": stamped ink far from the painted at " << where.toStdString();
    EXPECT_TRUE(InkNear(painted, stamped, background, where))
        << what << ": painted ink far from the stamped at " << where.toStdString();
    int inked = 0, differing = 0;
    for (int y = 0; y < stamped.height(); ++y)
        for (int x = 0; x < stamped.width(); ++x) {
            inked += Difference(painted.pixel(x, y), background) > Ink;
            differing += Difference(stamped.pixel(x, y), painted.pixel(x, y)) > Rounding;
        }
    EXPECT_GT(inked, 100) << what;
    EXPECT_LE(differing, share * inked) << what << ": " << differing << " of " << inked << " inked pixels differ";
}

int PixelsNotOf(const QImage& image, QRgb colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) != colour;
    return count;
}

// Rows of hits of every shape, each row's hits at every place inside the pixel in turn.
std::vector<Hit> RowsOfEveryShape(double scale, double c, bool solid) {
    std::vector<Hit> hits;
    for (int s = 0; s < 14; ++s)
        for (int i = 0; i < 20; ++i) {
            const double pixelX = 25 + 38 * i + (i % StampPhases + 0.5) / StampPhases;
            const double pixelY = 25 + 38 * s + ((i * 3) % StampPhases + 0.5) / StampPhases;
            hits.push_back({s, pixelX / scale, pixelY / scale, c, solid});
        }
    return hits;
}

}  // namespace

TEST(HitStamps, AHitAtTheMiddleOfItsPlaceIsTheOutlineQtPaints) {
    const QSize size(800, 560);
    for (double c : {0.0, 30.0, 45.0, 90.0, 200.0}) {
        const std::vector<Hit> hits = RowsOfEveryShape(1, c, false);
        const Painted stamped = Paint(QImage::Format_RGB32, size, 1, hits);
        const Painted painted = Paint(QImage::Format_ARGB32, size, 1, hits);
        EXPECT_GT(stamped.Made, 14 * StampPhases - 1) << "C " << c;
        EXPECT_GT(stamped.Placed, 0) << "C " << c;
        EXPECT_EQ(stamped.Made + stamped.Placed, static_cast<std::int64_t>(hits.size())) << "C " << c;
        EXPECT_EQ(painted.Made + painted.Placed, 0);
        ExpectSameOutlines(stamped.Image, painted.Image, 0.03, "C " + std::to_string(c));
    }
}

TEST(HitStamps, WithoutSmoothingAStampIsTheSharpOutline) {
    const QSize size(800, 560);
    const std::vector<Hit> hits = RowsOfEveryShape(1, 30, false);
    const Painted stamped = Paint(QImage::Format_RGB32, size, 1, hits, {}, false);
    const Painted painted = Paint(QImage::Format_ARGB32, size, 1, hits, {}, false);
    EXPECT_GT(stamped.Placed, 0);
    ExpectSameOutlines(stamped.Image, painted.Image, 0.03, "sharp");
    // Sharp lines leave only the background and the outline's own colour.
    const QRgb background = PlotColour(DefaultColours()[ColourItem::PlotBackground]).rgb();
    const QRgb outline = PlotColour(DefaultColours()[ColourItem::BackgroundPunching]).rgb();
    int others = 0;
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const QRgb p = stamped.Image.pixel(x, y);
            others += p != background && p != outline;
        }
    EXPECT_EQ(others, 0);
}

TEST(HitStamps, AHitAnywhereIsItsOutlineMovedToTheMiddleOfItsPlace) {
    const QSize size(700, 500);
    const double scale = 1.37;
    std::vector<Hit> hits, moved;
    std::uint32_t seed = 12345;
    auto next = [&seed]() {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) / static_cast<double>(1u << 24);
    };
    for (int i = 0; i < 400; ++i) {
        const Hit hit{i % 14, 10 + next() * 490, 10 + next() * 350, std::floor(next() * 4) * 22.5, false};
        hits.push_back(hit);
        moved.push_back(AtPlaceMiddle(hit, scale));
    }
    const Painted stamped = Paint(QImage::Format_RGB32, size, scale, hits);
    const Painted painted = Paint(QImage::Format_ARGB32, size, scale, moved);
    EXPECT_GT(stamped.Placed, 0);
    ExpectSameOutlines(stamped.Image, painted.Image, 0.03, "anywhere");
}

TEST(HitStamps, SolidHitsAreStampedFilled) {
    const QSize size(800, 560);
    const std::vector<Hit> hits = RowsOfEveryShape(1, 15, true);
    const Painted stamped = Paint(QImage::Format_RGB32, size, 1, hits);
    const Painted painted = Paint(QImage::Format_ARGB32, size, 1, hits);
    EXPECT_GT(stamped.Placed, 0);
    ExpectSameOutlines(stamped.Image, painted.Image, 0.03, "solid");
    // The middle of the first round hit is filled in the done colour.
    EXPECT_EQ(stamped.Image.pixel(25, 25), PlotColour(Yellow).rgb());
}

TEST(HitStamps, NothingOutsideTheClipOrThePictureChanges) {
    const QSize size(500, 400);
    std::vector<Hit> hits;
    // Hits across the clip's edges and across the picture's edges, at their places' middles.
    for (int i = 0; i < 60; ++i) {
        const double x = -8 + i * 8.73, y = (i % 2 ? -5.0 : 395.0) + (i % 7);
        hits.push_back(AtPlaceMiddle({i % 14, x, y, 0, i % 3 == 0}, 1));
        hits.push_back(AtPlaceMiddle({i % 14, 100 + (i % 10) * 1.1, 50 + i * 5.3, 0, false}, 1));
    }
    const QRect clip(100, 50, 300, 250);
    const Painted stamped = Paint(QImage::Format_RGB32, size, 1, hits, clip);
    const Painted painted = Paint(QImage::Format_ARGB32, size, 1, hits, clip);
    EXPECT_GT(stamped.Placed, 0);
    ExpectSameOutlines(stamped.Image, painted.Image, 0.03, "clipped");
    const QRgb background = PlotColour(DefaultColours()[ColourItem::PlotBackground]).rgb();
    QImage outside = stamped.Image.copy();
    for (int y = clip.top(); y <= clip.bottom(); ++y)
        for (int x = clip.left(); x <= clip.right(); ++x) outside.setPixel(x, y, background);
    EXPECT_EQ(PixelsNotOf(outside, background), 0);
    EXPECT_GT(PixelsNotOf(stamped.Image, background), 1000);
}

TEST(HitStamps, AnotherScaleMakesItsOwnStamps) {
    const QSize size(800, 560);
    const ColourTable colours = DefaultColours();
    QImage image(size, QImage::Format_RGB32);
    PlotCanvas canvas;
    Plotter plotter(canvas, colours, "");
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    ParseToolText(Shapes[5], rec.Tool, false);
    rec.Tool.Station = 20;
    // The same hits at one scale, then at twice it on the same canvas.
    std::vector<Hit> hits;
    for (int i = 0; i < 30; ++i) hits.push_back({5, 20 + i * 12.5 + 0.03, 40 + (i % 5) * 30.0 + 0.03, 0, false});
    for (double scale : {1.0, 2.0}) {
        image.fill(PlotColour(colours[ColourItem::PlotBackground]));
        canvas.SetDevice(&image, size);
        canvas.SetView({0, 0}, {size.width() / scale, size.height() / scale});
        for (const Hit& hit : hits) {
            rec.Points.Position = {static_cast<float>(hit.X), static_cast<float>(hit.Y)};
            ToolOutline(rec);
            plotter.PlotEntity(1, rec, ColourMode::Background, false);
        }
        canvas.Finish();
        std::vector<Hit> moved;
        for (const Hit& hit : hits) moved.push_back(AtPlaceMiddle(hit, scale));
        const Painted painted = Paint(QImage::Format_ARGB32, size, scale, moved);
        ExpectSameOutlines(image, painted.Image, 0.03, "scale " + std::to_string(scale));
    }
}

TEST(HitStamps, OutlinesTooLargeForAStampArePaintedEachTime) {
    const QSize size(800, 560);
    // At 8 pixels a millimetre a 20 mm obround reaches 80 pixels from its hit.
    const std::vector<Hit> hits = {{5, 30, 30, 0, false}, {5, 60, 30, 0, false}, {5, 60, 50, 0, true}};
    const Painted stamped = Paint(QImage::Format_RGB32, size, 8, hits);
    const Painted painted = Paint(QImage::Format_ARGB32, size, 8, hits);
    EXPECT_EQ(stamped.Made + stamped.Placed, 0);
    ExpectSameOutlines(stamped.Image, painted.Image, 0, "too large");
    EXPECT_GT(PixelsNotOf(stamped.Image, PlotColour(DefaultColours()[ColourItem::PlotBackground]).rgb()), 500);
}

TEST(HitStamps, AStampPlacedAgainIsThePixelsOfTheHitThatMadeIt) {
    // Hits whose pixels differ by whole pixels only: the first of each shape and angle makes the
    // stamp, the others are placed from it.
    const QSize size(800, 560);
    std::vector<Hit> hits;
    for (int s = 0; s < 14; ++s)
        for (int i = 0; i < 10; ++i) hits.push_back({s, 30.3125 + 70 * i, 30.6875 + 38 * s, i < 5 ? 0.0 : 30.0, false});
    const Painted stamped = Paint(QImage::Format_RGB32, size, 1, hits);
    // A round tool isn't turned: its hits at both angles share one stamp.
    EXPECT_EQ(stamped.Made, 27);
    EXPECT_EQ(stamped.Placed, 140 - 27);
    for (int s = 0; s < 14; ++s)
        for (int i = 1; i < 10; ++i) {
            const int first = i < 5 ? 0 : 5;
            const QImage made = stamped.Image.copy(30 + 70 * first - 30, 30 + 38 * s - 18, 62, 38);
            const QImage placed = stamped.Image.copy(30 + 70 * i - 30, 30 + 38 * s - 18, 62, 38);
            EXPECT_EQ(made, placed) << Shapes[s] << " hit " << i;
        }
}

TEST(HitStamps, StampsPastTheirMemoryAreForgotten) {
    HitStamps stamps;
    stamps.Use(1, 1, true);
    HitStamp large;
    large.Made = true;
    large.Pixels.resize(1'000'000);
    for (std::int64_t list = 1; list <= 4; ++list) stamps.Keep(stamps.Of({list, 0, false, 10}, 0, 0), large);
    EXPECT_TRUE(stamps.Of({1, 0, false, 10}, 0, 0).Made);
    stamps.Keep(stamps.Of({5, 0, false, 10}, 3, 3), large);
    EXPECT_FALSE(stamps.Of({1, 0, false, 10}, 0, 0).Made);
    // Another scale starts afresh too.
    stamps.Keep(stamps.Of({1, 0, false, 10}, 0, 0), large);
    stamps.Use(2, 2, true);
    EXPECT_FALSE(stamps.Of({1, 0, false, 10}, 0, 0).Made);
}

TEST(HitStamps, NonsenseRecordsDrawWhatTheyCanOnAPicture) {
    // Hits of nonsense tools, angles and places (NaN, 1e30, zero sizes) through the stamps.
    const QSize size(400, 300);
    QImage image(size, QImage::Format_RGB32);
    const ColourTable colours = DefaultColours();
    image.fill(PlotColour(colours[ColourItem::PlotBackground]));
    PlotCanvas canvas;
    canvas.SetDevice(&image, size);
    canvas.SetView({0, 0}, {400, 300});
    Plotter plotter(canvas, colours, "");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float values[] = {nan, 1e30f, -1e30f, 0, 1e-30f, 150, -3, 7.5f, 299.99f};
    int drawn = 0;
    for (float position : values)
        for (float extra : values)
            for (const char* text : {"DIAMETER 10", "SQUARE 0.5", "OBROUND 1e30X8", "RECTANGLE 20X8A30"}) {
                EntityRec rec;
                rec.Kind = EntityKind::Punch;
                ParseToolText(text, rec.Tool, false);
                rec.Tool.Station = 20;
                rec.Tool.Extra1 = extra;
                rec.Points.Position = {position, 150};
                plotter.PlotEntity(1, rec, ColourMode::RealTime, true);
                plotter.PlotEntity(1, rec, ColourMode::Background, false);
                ++drawn;
            }
    // And random bytes as drawing records, as the plot's fuzz target feeds them, on the picture.
    std::uint32_t seed = 7;
    std::string bytes(RecordLength * 200, '\0');
    for (char& b : bytes) {
        seed = seed * 1664525u + 1013904223u;
        b = static_cast<char>(seed >> 24);
    }
    DrawingFile drawing = DrawingFile::InMemory(bytes);
    EntityRec rec;
    for (std::int32_t n = 1; n <= 200 && drawing.Get(n, rec); ++n) {
        const std::int64_t hits = static_cast<std::int64_t>(rec.Counts[1] > 0 ? rec.Counts[1] : 0) *
                                  (rec.Kind == EntityKind::GridPattern && rec.Counts[2] > 0 ? rec.Counts[2] : 1);
        if (hits > 20000) continue;
        for (int mode = 0; mode <= 3; ++mode) plotter.PlotEntity(n % 3, rec, mode, n % 2 == 0);
    }
    canvas.Finish();
    EXPECT_EQ(drawn, 9 * 9 * 4);
    // The sensible hits among them were drawn: the picture is not the bare background.
    EXPECT_GT(PixelsNotOf(image, PlotColour(colours[ColourItem::PlotBackground]).rgb()), 50);
    EXPECT_GT(canvas.StampsPlaced(), 0);
}
