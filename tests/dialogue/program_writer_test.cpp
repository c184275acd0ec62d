// The program generated from the dialogue: block numbers, header, the emission of each kind,
// profiles, the arc forms, Multi-Part, and the Write button's questions and refusals.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "analysis/drawing_file.h"
#include "analysis/tool_outline.h"
#include "core/paths.h"
#include "dialogue/program_writer.h"
#include "tests/dialogue/dialogue_fixture.h"

namespace kirvana {
namespace {

class ProgramWriterTest : public DialogueFixture {
protected:
    std::vector<std::string> Generate(bool imperial = false) {
        session.State.ProgName = "PART1";
        session.State.ProgDir = "Dorvenis";
        session.State.ProgText = "TEST PART";
        session.State.ImperialDialogue = imperial;
        GeneratorInput input = GeneratorInputOf(session);
        input.Today = "25-11-2026";
        auto lines = GenerateProgramLines(session.WorkFile("drw"), input);
        EXPECT_TRUE(lines.has_value());
        return lines.value_or(std::vector<std::string>{});
    }
    // The blocks after the start block, without the three end blocks.
    static std::vector<std::string> Body(const std::vector<std::string>& lines) {
        std::size_t start = 0;
        while (start < lines.size() && lines[start].find("G00 G05 G90") == std::string::npos) ++start;
        return std::vector<std::string>(lines.begin() + static_cast<long>(start) + 1, lines.end() - 3);
    }
    void Punch(double x, double y, int station, double index = 0) {
        Add(ComposePunch(x, y, index, 0, ToolOf(station), session.Last(), session.Limits()));
    }
    void Record(EntityRec rec) {
        ToolOutline(rec);
        ASSERT_TRUE(session.ConfirmEntity(rec));
    }
    EntityRec ArcPatternRecord(double sweep, double step, std::int16_t hits, double pitch) {
        EntityRec rec;
        rec.Kind = EntityKind::ArcPattern;
        rec.KindName = FixedText("Arc", KindNameWidth);
        rec.Points.Position = {500, 250};
        rec.Values[1] = 50;
        rec.Values[3] = static_cast<float>(pitch);
        rec.Values[10] = 0;
        rec.Values[11] = static_cast<float>(sweep);
        rec.Values[12] = static_cast<float>(step);
        rec.Counts[1] = hits;
        CopyTool(ToolOf(1).Tool, rec.Tool);
        rec.StationNo = 1;
        return rec;
    }
};

TEST_F(ProgramWriterTest, OnePunchGivesHeaderStartBlockThePunchAndTheEndBlocks) {
    StartWithSheet();
    Punch(100, 50, 1);
    const std::vector<std::string> expected = {
        "N0010 ! PROGRAM NAME : PART1",
        "N0012 ! DIRECTORY : Dorvenis",
        "N0014 ! DESCRIPTION : TEST PART",
        "N0016 ! DATE : 25-11-2026",
        "N0018 ! MATERIAL : MILD STEEL 2MM",
        "N0020 ! SHEET SIZE : 1000 x 500",
        "N0022 ! CLAMPS : 1=200 2=500 3=800",
        "N0024 ! T1=" + DescribeTool(ToolOf(1).Tool, false),
        "N0026 G00 G05 G90 G71",
        "N0028 X100 Y50 T01",
        "N0030 G53",
        "N0032 M50 M99",
        "N0034 M30",
    };
    EXPECT_EQ(Generate(), expected);
}

TEST_F(ProgramWriterTest, TheFirstBlockIsN0010TheNextN0012) {
    StartWithSheet();
    auto lines = Generate();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_TRUE(lines[0].starts_with("N0010 "));
    EXPECT_TRUE(lines[1].starts_with("N0012 "));
}

TEST_F(ProgramWriterTest, TwoPunchesWithTheSameToolTheSecondHasNoT) {
    StartWithSheet();
    Punch(100, 50, 1);
    Punch(120, 50, 1);
    Punch(140, 50, 2);
    EXPECT_EQ(Body(Generate()),
              (std::vector<std::string>{"N0030 X100 Y50 T01", "N0032 X120 Y50", "N0034 X140 Y50 T02"}));
}

TEST_F(ProgramWriterTest, OnlyAnAutoindexStationGetsACWord) {
    StartWithSheet();
    // Station 1 is of type 1, station 5 of type 20 in the demo's turret.
    ASSERT_EQ(tooling.DialogueTable[0].TypeNumber, 1);
    ASSERT_EQ(tooling.DialogueTable[4].TypeNumber, 20);
    Punch(100, 50, 1, 30);
    Punch(200, 50, 5, 30);
    auto body = Body(Generate());
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(body[0], "N0030 X100 Y50 T01");
    EXPECT_EQ(body[1], "N0032 X200 Y50 C30 T05");
}

TEST_F(ProgramWriterTest, AFullArcPatternOfFourStepsOf90WritesThreeHits) {
    StartWithSheet();
    Record(ArcPatternRecord(360, 90, 4, 20));
    auto body = Body(Generate());
    ASSERT_EQ(body.size(), 1u);
    EXPECT_EQ(body[0], "N0028 G28 R50 P1=3 P2=90 P3=0 P7=500 P8=250 P9=1 T01");
}

TEST_F(ProgramWriterTest, AFullCircleNibbledAtFiveIsG37AtTenG28) {
    StartWithSheet();
    Record(ArcPatternRecord(360, 5.7296f, 63, 5));
    Record(ArcPatternRecord(360, 11.4592f, 32, 10));
    auto body = Body(Generate());
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(body[0], "N0028 G37 X500 Y250 R50 P1=360 P5=0 P8=5 T01");
    EXPECT_TRUE(body[1].starts_with("N0030 G28 R50 P1=31 P2=11.46")) << body[1];
}

TEST_F(ProgramWriterTest, FlipInXAndYGivesM55I1I1) {
    StartWithSheet();
    EntityRec flip;
    flip.Kind = EntityKind::FlipRotate;
    flip.Counts[1] = -1;
    flip.Counts[2] = -1;
    Record(flip);
    EntityRec nothing;
    nothing.Kind = EntityKind::FlipRotate;
    Record(nothing);
    EXPECT_EQ(Body(Generate()), (std::vector<std::string>{"N0026 M55 I1 I1"}));
}

TEST_F(ProgramWriterTest, LinesGridsStopsDwellsAndRepositions) {
    StartWithSheet();
    LineFields line;
    line.Change(LineFields::StartX, 10);
    line.Change(LineFields::StartY, 20);
    line.Change(LineFields::Length, 100);
    line.Change(LineFields::Pitch, 25);
    Add(ComposeLine(line, 0, 0, ToolOf(1), session.PlasmaSettingsArray()));
    GridFields grid;
    grid.X = 200;
    grid.Y = 100;
    grid.Row = {40, 10, 0};
    grid.Column = {0, 20, 3};
    Add(ComposeGrid(grid, 0, ToolOf(2)));
    Add(ComposeDwell(1.255, session.Last()));
    Add(ComposeStop(300, 300, true, session.Last(), session.Limits()));
    Add(ComposeStop(300, 300, false, session.Last(), session.Limits()));
    double offset = 0;
    Add(ComposeReposition(1000, 100, 300, 2, session.Limits(), offset));
    EXPECT_EQ(Body(Generate()), (std::vector<std::string>{
                                    "N0030 G26 X10 Y20 P1=5 P2=25 P5=0 P9=1 P10=0 P11=0 T01",
                                    "N0032 G26 X200 Y100 P1=5 P2=10 P3=3 P4=20 P5=0 P9=1 P10=0 P11=0 T02",
                                    "N0034 G04 X1.26",
                                    "N0036 G77 X300 Y300 M01",
                                    "N0038 M00",
                                    "N0040 G95 X1000 Y100 I300 J2 K2",
                                }));
}

TEST_F(ProgramWriterTest, ProfilesWithSettingsCompensationAndTorch) {
    StartWithSheet();
    SettingsArray settings;
    ClearSettings(settings);
    for (std::size_t i = 0; i < 7; ++i) settings[i] = static_cast<float>(1000 + i);
    LineFields a;
    a.Change(LineFields::StartX, 100);
    a.Change(LineFields::StartY, 100);
    a.Change(LineFields::FinishX, 200);
    a.Change(LineFields::FinishY, 100);
    Add(ComposeLine(a, 0, 1, ToolOf(-1), settings));
    ArcFields arc;
    arc.CentreX = 200;
    arc.CentreY = 150;
    arc.Radius = 50;
    arc.StartAngle = 270;
    arc.FinishAngle = 90;  // 270 to 90: a sweep of -180, clockwise
    Add(ComposeArc(arc, 0, false, 1, ToolOf(-1), settings));
    Punch(500, 400, 1);
    auto body = Body(Generate());
    EXPECT_EQ(body, (std::vector<std::string>{
                        "N0028 M100",
                        "N0030 P101=1000 P102=1001 P103=1002 P104=1003 P105=1004",
                        "N0032 P106=1005 P107=1006",
                        "N0034 G00 X100 Y100",
                        "N0036 G41",
                        "N0038 M04",
                        "N0040 G101 X200 Y100",
                        "N0042 G102 X200 Y200 I0 J50",
                        "N0044 M101",
                        "N0046 X500 Y400 T01",
                    }));
}

TEST_F(ProgramWriterTest, InchesWriteG70AndLengthsToThreeDecimals) {
    StartWithSheet(1016, 508);
    Punch(25.4, 12.7, 1);
    auto lines = Generate(true);
    EXPECT_EQ(lines[5], "N0020 ! SHEET SIZE : 40 x 20");
    EXPECT_EQ(Body(lines), (std::vector<std::string>{"N0028 X1 Y0.5 T01"}));
    EXPECT_NE(lines[8].find("G70"), std::string::npos);
}

TEST_F(ProgramWriterTest, MultiPartRepeatsEachToolGroupOverTheCells) {
    StartWithSheet(100, 50);
    Punch(10, 10, 1);
    Punch(20, 10, 1);
    Punch(30, 30, 2);
    NestFields nest{2500, 1000, 2, 2, 10, 5, 20, 30, 0};
    ASSERT_TRUE(session.ConfirmMultiPart(nest).Ok);
    auto body = Body(Generate());
    // Group one, station 1: cells (20,30), (130,30), then up a row walking back: (130,85), (20,85).
    EXPECT_EQ(body, (std::vector<std::string>{
                        "N0030 X30 Y40 T01",
                        "N0032 X40 Y40",
                        "N0034 X140 Y40",
                        "N0036 X150 Y40",
                        "N0038 X140 Y95",
                        "N0040 X150 Y95",
                        "N0042 X30 Y95",
                        "N0044 X40 Y95",
                        "N0046 X50 Y60 T02",
                        "N0048 X160 Y60",
                        "N0050 X160 Y115",
                        "N0052 X50 Y115",
                    }));
}

TEST_F(ProgramWriterTest, WriteRefusesBadNames) {
    StartWithSheet();
    auto never = [](const std::vector<std::string>&) {
        ADD_FAILURE() << "no question expected";
        return false;
    };
    EXPECT_EQ(WriteProgram(session, "", "P", never).Message, (std::vector<std::string>{"Invalid Directory Name !"}));
    EXPECT_EQ(WriteProgram(session, "../x", "P", never).Message,
              (std::vector<std::string>{"Invalid Directory Name !"}));
    EXPECT_EQ(WriteProgram(session, "Dorvenis", " ", never).Message,
              (std::vector<std::string>{"Invalid Program Name !"}));
    EXPECT_EQ(WriteProgram(session, "Dorvenis", "a/b", never).Message,
              (std::vector<std::string>{"Invalid Program Name !"}));
}

TEST_F(ProgramWriterTest, WriteAsksToCreateADirectoryAndToOverwrite) {
    StartWithSheet();
    Punch(100, 50, 1);
    std::vector<std::vector<std::string>> asked;
    bool answer = false;
    auto ask = [&](const std::vector<std::string>& lines) {
        asked.push_back(lines);
        return answer;
    };
    WriteResult declined = WriteProgram(session, "NewDir", "NEW1", ask, "25-11-2026");
    EXPECT_FALSE(declined.Written);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0], (std::vector<std::string>{"Directory", "NewDir", "Does Not Exist !", "Create It ?"}));
    EXPECT_FALSE(IsDirectory(dirs.ProgramRoot + "NewDir"));

    answer = true;
    WriteResult written = WriteProgram(session, "NewDir", "NEW1", ask, "25-11-2026");
    ASSERT_TRUE(written.Written) << (written.Message.empty() ? "" : written.Message[0]);
    EXPECT_EQ(written.ProgramFile, dirs.ProgramRoot + "NewDir/NEW1.prg");
    EXPECT_TRUE(FileExists(dirs.ProgramRoot + "NewDir/NEW1.stg"));
    auto stg = ReadLines(dirs.ProgramRoot + "NewDir/NEW1.stg");
    ASSERT_TRUE(stg && !stg->empty());
    EXPECT_EQ(stg->back(), "******");
    auto program = ReadLines(written.ProgramFile);
    ASSERT_TRUE(program);
    EXPECT_EQ((*program)[0], "N0010 ! PROGRAM NAME : NEW1");

    // Over an existing program: the question, and on no the file stays as it was.
    Punch(200, 50, 1);
    asked.clear();
    answer = false;
    EXPECT_FALSE(WriteProgram(session, "NewDir", "NEW1", ask, "25-11-2026").Written);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0], (std::vector<std::string>{"Program", "NEW1", "Already Exists !", "Overwrite It ?"}));
    EXPECT_EQ(*ReadLines(written.ProgramFile), *program);
    answer = true;
    ASSERT_TRUE(WriteProgram(session, "NewDir", "NEW1", ask, "25-11-2026").Written);
    EXPECT_EQ(ReadLines(written.ProgramFile)->size(), program->size() + 1);
}

TEST_F(ProgramWriterTest, WriteRefusesAToolNotInAStation) {
    StartWithSheet();
    Punch(100, 50, 1);
    // The tool leaves the station.
    session.Table()[0].Valid = FalseWord;
    auto yes = [](const std::vector<std::string>&) { return true; };
    WriteResult result = WriteProgram(session, "Dorvenis", "NOTOOL", yes);
    EXPECT_FALSE(result.Written);
    EXPECT_EQ(result.Message, (std::vector<std::string>{"Invalid Tooling !", "Check All Tools Are In Stations !"}));
    EXPECT_FALSE(FileExists(dirs.ProgramRoot + "Dorvenis/NOTOOL.prg"));
}

TEST_F(ProgramWriterTest, WriteRefreshesTheStationOfAToolThatMoved) {
    StartWithSheet();
    Punch(100, 50, 1);
    // The same tool now stands in station 3 only.
    session.Table()[2] = session.Table()[0];
    session.Table()[2].TNumber = 3;
    session.Table()[0].Valid = FalseWord;
    auto yes = [](const std::vector<std::string>&) { return true; };
    ASSERT_TRUE(WriteProgram(session, "Dorvenis", "MOVED", yes).Written);
    EXPECT_EQ(session.Entity(2)->StationNo, 3);
    auto program = ReadLines(dirs.ProgramRoot + "Dorvenis/MOVED.prg");
    ASSERT_TRUE(program);
    EXPECT_TRUE(std::any_of(program->begin(), program->end(),
                            [](const std::string& line) { return line.ends_with(" X100 Y50 T03"); }));
    EXPECT_TRUE(std::any_of(program->begin(), program->end(),
                            [](const std::string& line) { return line.find(" ! T3=") != std::string::npos; }));
}

TEST_F(ProgramWriterTest, AMultiPartOfTooManyCellsIsAnInvalidDrawing) {
    StartWithSheet(1, 1);
    Punch(0.5, 0.5, 1);
    NestFields nest{2500, 1000, 1000, 1000, 0, 0, 0, 0, 0};
    ASSERT_TRUE(session.ConfirmMultiPart(nest).Ok);
    auto yes = [](const std::vector<std::string>&) { return true; };
    WriteResult result = WriteProgram(session, "Dorvenis", "HUGE", yes);
    EXPECT_FALSE(result.Written);
    EXPECT_EQ(result.Message, (std::vector<std::string>{"Invalid Drawing !", "Program Creation Aborted !"}));
    EXPECT_FALSE(FileExists(dirs.ProgramRoot + "Dorvenis/HUGE.prg"));
}

TEST_F(ProgramWriterTest, AnUnreadableDrawingIsAnInvalidDrawing) {
    StartWithSheet();
    std::filesystem::remove(session.WorkFile("drw"));
    GeneratorInput input = GeneratorInputOf(session);
    EXPECT_FALSE(GenerateProgramLines(session.WorkFile("drw"), input).has_value());
    auto yes = [](const std::vector<std::string>&) { return true; };
    WriteResult result = WriteProgram(session, "Dorvenis", "BROKEN", yes);
    EXPECT_FALSE(result.Written);
    EXPECT_FALSE(FileExists(dirs.ProgramRoot + "Dorvenis/BROKEN.prg"));
}

}  // namespace
}  // namespace kirvana
