// The office seat's drawing and expand commands, run as an operator runs them.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <string>

#include "analysis/drawing_file.h"
#include "analysis/drawing_listing.h"
#include "analysis/tool_outline.h"
#include "tests/core/temp_dir.h"
#include "tests/support/office_run.h"

namespace kirvana {
namespace {

void WriteDrawing(const std::string& path) {
    DrawingFile file;
    ASSERT_TRUE(file.Create(path));
    std::int16_t counter = 0;
    EntityRec sheet;
    sheet.Kind = EntityKind::Sheet;
    sheet.KindName = FixedText("Sheet", KindNameWidth);
    AppendEntity(file, counter, sheet);
    EntityRec linear;
    linear.Kind = EntityKind::LinearPattern;
    linear.KindName = FixedText("Linear Pattern", KindNameWidth);
    linear.Points.Entry = {10, 10};
    linear.Points.Exit = {40, 10};
    linear.Values[2] = 10;
    linear.Counts[1] = 4;
    ToolOutline(linear);
    AppendEntity(file, counter, linear);
    sheet.RecordNo = counter;
    sheet.Counts[1] = counter;
    ASSERT_TRUE(file.Put(1, sheet));
    ASSERT_TRUE(file.Close());
}

TEST(OfficeDrawing, ExpandPrintsTheHitsAndDrawingListsTheRecords) {
    TempDir dir;
    const std::string stem = dir.Path() + "part.";
    WriteDrawing(stem + "drw");
    OfficeRun expand = RunOffice("expand " + stem);
    EXPECT_EQ(expand.Code, 0);
    EXPECT_EQ(expand.Output, "hits: 4\n");

    DrawingFile expanded;
    ASSERT_TRUE(expanded.Open(stem + "dr1", true));
    std::string listing;
    for (const auto& line : ListDrawing(expanded)) listing += line + "\n";
    OfficeRun drawing = RunOffice("drawing " + stem + "dr1");
    EXPECT_EQ(drawing.Code, 0);
    EXPECT_EQ(drawing.Output, listing);
    EXPECT_EQ(drawing.Output.substr(0, 31), "count 5, 5 records in the file\n");
    EXPECT_NE(drawing.Output.find("  position (40, 10), entry (40, 10), exit (40, 10)\n"), std::string::npos);
}

TEST(OfficeDrawing, BadUsageAndMissingFiles) {
    TempDir dir;
    EXPECT_EQ(RunOffice("drawing").Code, 2);
    EXPECT_EQ(RunOffice("expand").Code, 2);
    EXPECT_EQ(RunOffice("drawing " + dir.Path() + "none.drw").Code, 1);
    EXPECT_EQ(RunOffice("expand " + dir.Path() + "none.").Code, 1);
}

TEST(OfficeDrawing, AnyBytesAreListed) {
    TempDir dir;
    std::string bytes;
    for (int i = 0; i < 3000; ++i) bytes += static_cast<char>((i * 37) & 0xFF);
    dir.Write("junk.drw", bytes);
    OfficeRun run = RunOffice("drawing " + dir.Path() + "junk.drw");
    EXPECT_EQ(run.Code, 0);
    EXPECT_EQ(run.Output.rfind("count ", 0), 0u);
    EXPECT_EQ(RunOffice("expand " + dir.Path() + "junk.").Code, 0);
}

}  // namespace
}  // namespace kirvana
