#include "system/slot_run_plan.h"

#include <gtest/gtest.h>

#include "analysis/drawing_file.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

// Little-endian map records (word, block, record) of a `.W` file.
std::string MapRecords(std::initializer_list<std::array<int, 3>> records) {
    std::string bytes;
    for (const auto& r : records)
        for (int v : r) {
            bytes += static_cast<char>(v & 0xFF);
            bytes += static_cast<char>((v >> 8) & 0xFF);
        }
    return bytes;
}

EntityRec Entity(std::int16_t kind, std::int16_t mainBlock, float x, float y) {
    EntityRec rec;
    rec.Kind = kind;
    rec.MainBlock = mainBlock;
    rec.Points.Position = {x, y};
    rec.Points.End = {x, y};
    return rec;
}

}  // namespace

TEST(SlotRunPlanTest, StepsFromTheDrawingAndTheBlockMaps) {
    TempDir dir;
    Directories dirs;
    dirs.RootDir = dir.Path();
    // Line 1 has no words; lines 2 to 6 have words 0, 1-3, 4-6, 7 and 8-9. The subroutine's
    // line 2 starts at its word 0.
    dir.Write("Actvprg1.A1", "N1\nG90\nT4 X30 Y40\nG26 X0 Y0\nM01\nG68 S1\n");
    dir.Write("Actvprg1.W1", MapRecords({{0, 0, 2}, {1, 1, 3}, {2, 1, 3}, {3, 1, 3}, {4, 2, 4}, {5, 2, 4}, {6, 2, 4},
                                         {7, 3, 5}, {8, 4, 6}, {9, 4, 6}}));
    dir.Write("Actvprg1.A2", "N10\nX1 Y1\n");
    dir.Write("Actvprg1.W2", MapRecords({{0, 0, 2}, {1, 0, 2}}));
    DrawingFile drawing;
    ASSERT_TRUE(drawing.Create(dir.Path() + "Actvprg1.drw"));
    EntityRec sheet = Entity(EntityKind::Sheet, 0, 0, 0);
    sheet.RecordNo = 6;
    EntityRec move = Entity(EntityKind::Move, 2, 10, 20);
    EntityRec punch = Entity(EntityKind::Punch, 3, 30, 40);
    punch.StationNo = 4;
    EntityRec line = Entity(EntityKind::LinearPattern, 4, 0, 0);
    line.StationNo = 4;
    line.Points.Entry = {0, 0};
    line.Values[2] = 10;
    line.Counts[1] = 3;
    EntityRec stop = Entity(EntityKind::Stop, 5, 5, 5);
    stop.Counts[1] = -1;
    EntityRec sub = Entity(EntityKind::Punch, 6, 1, 1);
    sub.SubBlock = 2;
    sub.StationNo = 7;
    std::int32_t n = 1;
    for (EntityRec* rec : {&sheet, &move, &punch, &line, &stop, &sub}) ASSERT_TRUE(drawing.Put(n++, *rec));
    ASSERT_TRUE(drawing.Close());

    std::optional<RunPlan> plan = BuildRunPlan(dirs, 1);
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->size(), 7u);
    const RunPlan& p = *plan;
    auto at = [&](std::size_t i, int program, int word, double x, double y, int hits, int station) {
        EXPECT_EQ(p[i].Program, program) << i;
        EXPECT_EQ(p[i].Word, word) << i;
        EXPECT_NEAR(p[i].X, x, 1e-4) << i;
        EXPECT_NEAR(p[i].Y, y, 1e-4) << i;
        EXPECT_EQ(p[i].Hits, hits) << i;
        EXPECT_EQ(p[i].Station, station) << i;
    };
    at(0, 1, 0, 10, 20, 0, 0);
    at(1, 1, 1, 30, 40, 1, 4);
    at(2, 1, 4, 0, 0, 1, 0);   // the same station: no change
    at(3, 1, 4, 10, 0, 1, 0);
    at(4, 1, 4, 20, 0, 1, 0);
    at(5, 1, 7, 5, 5, 0, 0);
    EXPECT_EQ(p[5].Stop, RunStep::StopKind::Optional);
    at(6, 3, 0, 1, 1, 1, 7);

    // The source of a card: programs 1 and 2 only; a missing drawing can't run.
    RunPlanSource source = SlotRunPlanSource(dirs);
    EXPECT_TRUE(source(1));
    EXPECT_FALSE(source(2));
    EXPECT_FALSE(source(3));
    EXPECT_FALSE(source(5));
}
