// Golden programs: a dialogue drawing of every kind of entity, and a Multi-Part, written as
// programs and compared line by line with the programs kept in tests/data/dialogue.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "analysis/tool_outline.h"
#include "core/file_writer.h"
#include "core/paths.h"
#include "dialogue/program_writer.h"
#include "tests/dialogue/dialogue_fixture.h"

namespace kirvana {
namespace {

class ProgramGoldenTest : public DialogueFixture {
protected:
    void Punch(double x, double y, int station, double index = 0, int option = 0) {
        Add(ComposePunch(x, y, index, option, ToolOf(station), session.Last(), session.Limits()));
    }
    LineFields Line(double x1, double y1, double x2, double y2, double pitch) {
        LineFields f;
        f.Change(LineFields::StartX, x1);
        f.Change(LineFields::StartY, y1);
        f.Change(LineFields::FinishX, x2);
        f.Change(LineFields::FinishY, y2);
        if (pitch != 0) f.Change(LineFields::Pitch, pitch);
        return f;
    }
    ArcFields Arc(double cx, double cy, double r, double a1, double a2) {
        ArcFields f;
        f.CentreX = cx, f.CentreY = cy, f.Radius = r, f.StartAngle = a1, f.FinishAngle = a2;
        f.Settle();
        return f;
    }
    // The program against the golden file; KIRVANA_UPDATE_GOLDEN=1 rewrites the file instead.
    void Compare(const std::string& golden) {
        session.State.ProgName = "GOLDEN";
        session.State.ProgDir = "Dorvenis";
        session.State.ProgText = "EVERY ENTITY";
        GeneratorInput input = GeneratorInputOf(session);
        input.Today = "25-11-2026";
        auto lines = GenerateProgramLines(session.WorkFile("drw"), input);
        ASSERT_TRUE(lines);
        const std::string path = std::string(KIRVANA_SOURCE_DIR) + "/tests/data/dialogue/" + golden;
        if (std::getenv("KIRVANA_UPDATE_GOLDEN") != nullptr) {
            ASSERT_TRUE(WriteLines(path, *lines));
        }
        auto expected = ReadLines(path);
        ASSERT_TRUE(expected) << path;
        EXPECT_EQ(*lines, *expected);
    }
};

TEST_F(ProgramGoldenTest, EveryKindOfEntity) {
    StartWithSheet(2500, 1250);
    SettingsArray plasma;
    ClearSettings(plasma);
    plasma[0] = 20000;
    plasma[1] = 3000;
    plasma[7] = 1.5f;
    Punch(100, 100, 1);
    Punch(150, 100, 1);
    Punch(200, 100, 5, 30);
    Punch(300, 300, 1, 0, 1);  // a move
    Add(ComposeLine(Line(100, 200, 400, 200, 25), 0, 0, ToolOf(2), plasma));
    GridFields grid;
    grid.X = 500, grid.Y = 300, grid.Row = {120, 30, 0}, grid.Column = {0, 40, 3};
    Add(ComposeGrid(grid, 0, ToolOf(1)));
    ArcFields hits = Arc(800, 500, 60, 0, 180);
    hits.Change(ArcFields::AngularPitchField, 45);
    Add(ComposeArc(hits, 0, false, 0, ToolOf(1), plasma));
    ArcFields turning = Arc(1000, 500, 80, 90, 270);
    turning.Change(ArcFields::HitsField, 7);
    Add(ComposeArc(turning, 15, true, 0, ToolOf(5), plasma));
    ArcFields nibble = Arc(1200, 500, 50, 0, 0);
    nibble.Change(ArcFields::NibblePitchField, 5);
    Add(ComposeArc(nibble, 0, false, 0, ToolOf(1), plasma));
    Add(ComposeLine(Line(1400, 100, 1600, 100, 0), 0, 1, ToolOf(-1), plasma));
    Add(ComposeArc(Arc(1600, 150, 50, 270, 90), 0, false, 1, ToolOf(-1), plasma));
    Add(ComposeLine(Line(1700, 300, 1800, 300, 0), 0, 2, ToolOf(-1), plasma));
    Add(ComposeDwell(0.75, session.Last()));
    Add(ComposeStop(1800, 300, false, session.Last(), session.Limits()));
    Add(ComposeStop(1900, 400, true, session.Last(), session.Limits()));
    double offset = 0;
    Add(ComposeReposition(1500, 400, 800, 2, session.Limits(), offset));
    EntityRec flip;
    flip.Kind = EntityKind::FlipRotate;
    flip.KindName = FixedText("Flip / Rotate", KindNameWidth);
    flip.Counts[1] = -1;
    flip.Values[10] = 90;
    ToolOutline(flip);
    ASSERT_TRUE(session.ConfirmEntity(flip));
    Punch(1000, 1000, 2);
    Compare("every_kind.prg");
}

TEST_F(ProgramGoldenTest, MultiPartInInches) {
    session.State.ImperialDialogue = true;
    StartWithSheet(BoxLength("8", true), BoxLength("6", true));
    Punch(BoxLength("1", true), BoxLength("1", true), 1);
    Punch(BoxLength("3", true), BoxLength("1", true), 1);
    Add(ComposeLine(Line(BoxLength("1", true), BoxLength("4", true), BoxLength("6", true), BoxLength("4", true),
                         BoxLength("1.25", true)),
                    0, 0, ToolOf(2), session.PlasmaSettingsArray()));
    Punch(BoxLength("7", true), BoxLength("5", true), 5, 45);
    NestFields nest{BoxLength("96", true), BoxLength("39", true),  3, 2, BoxLength("0.5", true), BoxLength("0.5", true),
                    BoxLength("1", true),  BoxLength("1.5", true), 0};
    ASSERT_TRUE(session.ConfirmMultiPart(nest).Ok);
    Compare("multi_part_inches.prg");
}

}  // namespace
}  // namespace kirvana
