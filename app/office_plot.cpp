// The plot command: a drawing as a picture, through the plot of the panel, with the first hits
// of a run drawn as done.
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <cstdio>
#include <string>

#include "analysis/expand.h"
#include "app/office.h"
#include "core/number.h"
#include "core/paths.h"
#include "plot/plot_program.h"
#include "screens/plot_canvas.h"

namespace kirvana::office {

namespace {

constexpr const char* PlotUsage =
    "plot STEM --root ROOT --out FILE.png|FILE.svg [--size WxH] [--view X1,Y1,X2,Y2] [--done N]";

// "W" x "H" in pixels, each 16 to 8000.
bool ParseSize(const std::string& text, int& width, int& height) {
    std::size_t x = text.find('x');
    if (x == std::string::npos) return false;
    double w = ToNumber(text.substr(0, x)), h = ToNumber(text.substr(x + 1));
    if (!(w >= 16 && w <= 8000 && h >= 16 && h <= 8000)) return false;
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    return true;
}

// Four numbers separated by commas.
bool ParseView(const std::string& text, PlotView& view) {
    double v[4];
    std::size_t at = 0;
    for (int i = 0; i < 4; ++i) {
        std::size_t comma = text.find(',', at);
        if ((i < 3) != (comma != std::string::npos)) return false;
        std::string part = text.substr(at, comma == std::string::npos ? std::string::npos : comma - at);
        if (part.empty() || part.find_first_not_of("0123456789.-+ ") != std::string::npos) return false;
        v[i] = ToNumber(part);
        at = comma + 1;
    }
    if (v[0] == v[2] || v[1] == v[3]) return false;
    view.ViewTopLeft = {v[0], v[1]};
    view.ViewBottomRight = {v[2], v[3]};
    view.ViewChanged = true;
    return true;
}

bool EndsWith(const std::string& text, const char* tail) { return text.ends_with(tail); }

}  // namespace

int Plot(const Args& args) {
    bool haveRoot = false, haveOut = false, haveSize = false, haveView = false, haveDone = false;
    std::string root = Option(args, "--root", &haveRoot);
    const std::string out = Option(args, "--out", &haveOut);
    const std::string sizeText = Option(args, "--size", &haveSize);
    const std::string viewText = Option(args, "--view", &haveView);
    const std::string doneText = Option(args, "--done", &haveDone);
    const std::size_t expected = 1 + 2 * (1 + 1 + haveSize + haveView + haveDone);
    if (!haveRoot || !haveOut || args.size() != expected || args[0].starts_with("--")) return Usage(PlotUsage);
    const bool svg = EndsWith(out, ".svg") || EndsWith(out, ".SVG");
    if (!svg && !EndsWith(out, ".png") && !EndsWith(out, ".PNG")) return Usage(PlotUsage);
    int width = 1024, height = 768;
    if (haveSize && !ParseSize(sizeText, width, height)) return Usage(PlotUsage);
    PlotView view;
    if (haveView && !ParseView(viewText, view)) return Usage(PlotUsage);
    long done = 0;
    if (haveDone) {
        if (doneText.empty() || doneText.find_first_not_of("0123456789") != std::string::npos || doneText.size() > 9)
            return Usage(PlotUsage);
        done = std::stol(doneText);
    }

    Directories dirs;
    MachineData machine;
    if (!MachineAt(root, dirs, machine)) return 1;
    // A stem without a folder names files of the installation, such as a slot's "Actvprg1.".
    std::string stem = args[0];
    if (stem.find('/') == std::string::npos) stem = dirs.RootDir + stem;
    DrawingFile drawing;
    EntityRec sheet;
    if (!drawing.Open(stem + "drw", true) || !drawing.Get(1, sheet)) {
        std::fprintf(stderr, "cannot open the drawing %sdrw\n", stem.c_str());
        return 1;
    }
    ColourConfig colours = ReadColourConfig(dirs.RootDir);
    if (!colours.Note.empty()) std::fprintf(stderr, "%s\n", colours.Note.c_str());
    PlotConfig config = ReadPlotConfig(dirs.RootDir);

    PlotBoxInput input;
    input.Plot = 1;
    input.DrawingPath = stem + "drw";
    input.SheetX = sheet.Values[1];
    input.SheetY = sheet.Values[2];
    for (std::size_t i = 0; i < 4; ++i) input.Clamps[i] = sheet.Values[7 + i];
    input.BoxWidth = width;
    input.BoxHeight = height;
    input.LimitsOn = true;

    QImage image(width, height, QImage::Format_RGB32);
    image.fill(PlotColour(colours.Colours[ColourItem::PlotBackground]));
    QSvgGenerator generator;
    generator.setFileName(QString::fromStdString(out));
    generator.setSize(QSize(width, height));
    generator.setViewBox(QRect(0, 0, width, height));
    generator.setTitle("Kirvana 32 plot");
    PlotCanvas canvas;
    if (svg)
        canvas.SetDevice(&generator, QSize(width, height));
    else
        canvas.SetDevice(&image, QSize(width, height));
    Plotter plotter(canvas, colours.Colours, dirs.ToolsDir);
    PlotResult result = PlotProgram(plotter, view, machine, input);

    // The first hits of a run, from the expanded file (built in memory when there is none).
    if (done > 0) {
        DrawingFile hits;
        if (!hits.Open(stem + "dr1", true)) {
            hits = DrawingFile::InMemory();
            ExpandRecords(drawing, hits);
        }
        std::vector<std::int32_t> records;
        const std::int32_t last = hits.LastReadable();
        for (std::int32_t n = 2; n <= last && n - 1 <= done; ++n) records.push_back(n);
        PlotDoneHits(plotter, 1, hits, records, config);
    }
    canvas.Finish();
    // The shapes over the box, on top.
    {
        QPainter painter;
        if (svg ? painter.begin(&generator) : painter.begin(&image)) {
            canvas.PaintOverlays(painter);
            painter.end();
        }
    }
    if (!svg && !image.save(QString::fromStdString(out), "PNG")) {
        std::fprintf(stderr, "cannot write %s\n", out.c_str());
        return 1;
    }
    if (svg && !FileExists(out)) {
        std::fprintf(stderr, "cannot write %s\n", out.c_str());
        return 1;
    }
    std::printf("entities: %d\n", result.Entities);
    return 0;
}

}  // namespace kirvana::office
