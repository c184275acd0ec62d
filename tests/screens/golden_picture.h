// The plot's pictures against each other and against the golden ones kept in tests/data/plot.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <cstdlib>
#include <string>

namespace kirvana {

// The pixels whose colours differ by more than 60 in red, green and blue together: smoothing
// leaves a few, an outline moved or lost a hundred or more.
inline int Differing(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return a.width() * a.height();
    int differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            if (std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q)) > 60)
                ++differing;
        }
    return differing;
}

// Writes the picture into the screenshots folder as plot_NAME.png for a person to look at, and
// compares it with the golden tests/data/plot/NAME.png, looked at and kept: a few pixels may
// differ (smoothing); one outline moved or lost differs in a hundred or more.
inline void ExpectGolden(const QImage& image, const std::string& name) {
    QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
    EXPECT_TRUE(image.save(QString(KIRVANA_BINARY_DIR "/screenshots/plot_%1.png").arg(name.c_str()), "PNG"));
    QImage golden(QString(KIRVANA_SOURCE_DIR "/tests/data/plot/%1.png").arg(name.c_str()));
    ASSERT_EQ(golden.size(), image.size()) << name << ": no golden picture of this size";
    EXPECT_LT(Differing(image, golden.convertToFormat(QImage::Format_RGB32)), 60)
        << name << ": pixels differing from the golden picture";
}

}  // namespace kirvana
