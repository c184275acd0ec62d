// ViewProgForm's page: the records around the lit block, read by record number from the slot's
// `.RA`k and `.RM`k files.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "core/text.h"
#include "navigation/program_view.h"
#include "system/startup.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

std::string Padded(const std::string& text, std::size_t width) {
    std::string out = text;
    out.resize(width, ' ');
    return out;
}

class ProgramViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Main(process_, platform_, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    }
    DemoInstallation dir_;
    QuietPlatform platform_;
    Process process_;
};

}  // namespace

TEST_F(ProgramViewTest, RowsAreReadByRecordFromBothFiles) {
    std::string ra, rm;
    for (int n = 1; n <= 20; ++n) {
        ra += Padded("N" + std::to_string(n) + " X" + std::to_string(n), 80);
        rm += Padded("X" + std::to_string(n * 10), 240);
    }
    dir_.Write("A.RA1", ra);
    dir_.Write("A.RM1", rm);
    std::vector<ViewRow> rows = ReadViewRows(dir_.Path() + "A.RA1", dir_.Path() + "A.RM1", 18, 5, 20);
    ASSERT_EQ(rows.size(), 3u);  // only as far as the file's records go
    EXPECT_EQ(rows[0], (ViewRow{18, "N18 X18", "X180", false}));
    EXPECT_EQ(rows[2], (ViewRow{20, "N20 X20", "X200", false}));
    EXPECT_TRUE(ReadViewRows(dir_.Path() + "A.RA1", dir_.Path() + "A.RM1", 21, 5, 20).empty());
    EXPECT_TRUE(ReadViewRows(dir_.Path() + "A.RA1", dir_.Path() + "A.RM1", 0, 5, 20).empty());
    // A file shorter than its count (cut by a fault) gives empty rows, never a crash.
    dir_.Write("B.RA1", ra.substr(0, 80 * 2 + 2));
    rows = ReadViewRows(dir_.Path() + "B.RA1", dir_.Path() + "missing", 1, 4, 20);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[1].Source, "N2 X2");
    EXPECT_EQ(rows[2].Source, "N3");
    EXPECT_EQ(rows[3].Source, "");
    EXPECT_EQ(rows[0].Motion, "");
}

TEST_F(ProgramViewTest, PageAroundTheLitRecordOfASelectedSlot) {
    std::string program = "G90 G71\nT1 X100 Y100\n";
    for (int n = 1; n <= 40; ++n) program += "X" + std::to_string(100 + n * 20) + " Y100\n";
    dir_.Write("Programs/Dorvenis/VIEW40.prg", program + "M30\n");
    process_.Config.ActiveSlot = 1;
    ASSERT_TRUE(SelectProgram(process_, platform_, nullptr, "Dorvenis", "VIEW40").Selected);
    const std::int32_t count = process_.Slots[0].Counts[0].SourceRecordCount;
    ASSERT_GT(count, 12);
    ViewPage page = ViewPageAround(process_, 1, 10, 8);
    EXPECT_EQ(page.Slot, 1);
    EXPECT_EQ(page.ProgramName, "VIEW40");
    ASSERT_EQ(page.Rows.size(), 8u);
    EXPECT_EQ(page.Rows[0].Record, 10 - ViewRowsAbove);
    EXPECT_TRUE(page.Rows[ViewRowsAbove].Lit);
    EXPECT_EQ(page.Rows[ViewRowsAbove].Record, 10);
    int lit = 0;
    for (const ViewRow& row : page.Rows) lit += row.Lit ? 1 : 0;
    EXPECT_EQ(lit, 1);
    // The rows are the cleaned source of the slot, in its order.
    auto source = ReadLines(dir_.Path() + "Actvprg1.org");
    ASSERT_TRUE(source);
    EXPECT_EQ(page.Rows[0].Source, std::string(Trim((*source)[5])).substr(0, 80));
    // Near the start and the end the page stays within the program.
    EXPECT_EQ(ViewPageAround(process_, 1, 2, 8).Rows.front().Record, 1);
    ViewPage last = ViewPageAround(process_, 1, count, 8);
    ASSERT_EQ(last.Rows.size(), 8u);
    EXPECT_EQ(last.Rows.back().Record, count);
    EXPECT_TRUE(last.Rows.back().Lit);
    // No block yet: the top of the program, nothing lit.
    ViewPage none = ViewPageAround(process_, 1, -1, 8);
    ASSERT_FALSE(none.Rows.empty());
    EXPECT_EQ(none.Rows.front().Record, 1);
    for (const ViewRow& row : none.Rows) EXPECT_FALSE(row.Lit);
}

TEST_F(ProgramViewTest, EmptyPageForAnEmptySlotOrAProgramOutOfRange) {
    EXPECT_TRUE(ViewPageAround(process_, 2, 3, 8).Rows.empty());
    EXPECT_EQ(ViewPageAround(process_, 2, 3, 8).Slot, 2);
    EXPECT_TRUE(ViewPageAround(process_, 5, 3, 8).Rows.empty());
    EXPECT_EQ(ViewPageAround(process_, 0, 3, 8).Slot, 0);
}
