// The round trip: a dialogue drawing of every entity kind, every kind of tool (plain,
// autoindex, plasma), both units and a Multi-Part, is written as a program; the program goes
// through the passes of a selection (convert, blend, reverse, expand) and its hits and profiles
// are compared with the ones drawn; then it is loaded back into the dialogue and written again:
// the second program equals the first.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/reverse.h"
#include "core/file_writer.h"
#include "core/paths.h"
#include "core/text.h"
#include "dialogue/program_loader.h"
#include "dialogue/program_writer.h"
#include "tests/dialogue/dialogue_fixture.h"
#include "translate/blend.h"
#include "translate/convert.h"

namespace kirvana {
namespace {

struct Hit {
    double X, Y;
    ToolRecord Tool;
    double C;  // the index angle of the hit
};

std::vector<EntityRec> Records(const std::string& path) {
    std::vector<EntityRec> records;
    DrawingFile file;
    if (!file.Open(path, true)) return records;
    for (std::int32_t n = 1; n <= file.LastReadable(); ++n) {
        EntityRec rec;
        file.Get(n, rec);
        records.push_back(rec);
    }
    return records;
}

std::vector<Hit> Hits(const std::string& stem) {
    EXPECT_TRUE(ExpandDrawing(stem).Done);
    std::vector<Hit> hits;
    auto records = Records(stem + "dr1");
    for (std::size_t n = 1; n < records.size(); ++n)
        hits.push_back(
            Hit{records[n].Points.Position.X, records[n].Points.Position.Y, records[n].Tool, records[n].Tool.Extra1});
    return hits;
}

std::vector<EntityRec> Profiles(const std::vector<EntityRec>& records) {
    std::vector<EntityRec> profiles;
    for (const EntityRec& rec : records)
        if (rec.Kind == EntityKind::LineProfile || rec.Kind == EntityKind::ArcProfile) profiles.push_back(rec);
    return profiles;
}

bool Near(PointF a, PointF b) { return std::fabs(a.X - b.X) <= 0.01 && std::fabs(a.Y - b.Y) <= 0.01; }

class RoundTripTest : public DialogueFixture {
protected:
    const std::string today = "25-11-2026";
    bool yes(const std::vector<std::string>&) { return true; }

    // The selection's passes on the program, under a stem of their own.
    std::string Select(const std::string& program) {
        const std::string stem = demo.Path() + "Actvprg9.";
        auto lines = ReadLines(program);
        EXPECT_TRUE(lines.has_value());
        std::vector<std::string> kept;
        for (const std::string& line : *lines)
            if (!Trim(line).empty()) kept.emplace_back(Trim(line));
        EXPECT_TRUE(WriteLines(stem + "org", kept));
        std::int16_t dialect = 0;
        EXPECT_EQ(ConvertProgram(stem, dialect, ConvertSettingsFrom(machine, dirs)).Status, ConvertStatus::Done);
        BlendResult blended = BlendProgram("Dorvenis", "RT", stem, BlendSettingsFrom(machine, dirs));
        EXPECT_EQ(blended.CriticalCount, 0) << *ReadLines(dirs.ServiceDir + "Blend.txt")->data();
        EXPECT_FALSE(blended.FileFault);
        ReverseSettings settings = ReverseSettingsFrom(machine, dirs, session.Table(), MachinePlasmaTool(tooling));
        std::int16_t changes = 0;
        ReverseResult reversed = ReversePass(stem, "RT", "Dorvenis", changes, settings);
        EXPECT_EQ(reversed.Result, 0);
        return stem;
    }

    // The drawn hits: the dialogue's drawing expanded, a Multi-Part's part at each of its cells.
    std::vector<Hit> DrawnHits() {
        const std::string stem = session.Stem();
        if (!session.State.MultiPartMode) return Hits(stem);
        auto records = Records(session.WorkFile("drw"));
        const EntityRec& part = records[1];
        std::filesystem::copy_file(session.WorkFile("prw"), demo.Path() + "Part.drw",
                                   std::filesystem::copy_options::overwrite_existing);
        std::vector<Hit> one = Hits(demo.Path() + "Part.");
        std::vector<Hit> all;
        for (int row = 0; row < part.Counts[2]; ++row)
            for (int column = 0; column < part.Counts[1]; ++column)
                for (Hit h : one) {
                    h.X += part.Values[3] + column * static_cast<double>(part.Values[11]);
                    h.Y += part.Values[4] + row * static_cast<double>(part.Values[12]);
                    all.push_back(h);
                }
        return all;
    }

    // Writes, selects, compares, loads back and writes again; the counts checked are added up.
    // `profilesRead` false: the convert pass's word ordering cuts "M10" out of every "M100"
    // block ("M10 0"), so a program's profiling is never switched on and its G101 to G103
    // blocks come back as no profile; the punch hits are still compared and no load follows.
    void RoundTrip(const std::string& name, bool inOrder, bool profilesRead = true) {
        auto ask = [](const std::vector<std::string>&) { return true; };
        WriteResult first = WriteProgram(session, "Dorvenis", name, ask, today);
        ASSERT_TRUE(first.Written) << (first.Message.empty() ? "" : first.Message[0]);
        auto firstText = ReadLines(first.ProgramFile);
        ASSERT_TRUE(firstText);

        std::vector<Hit> drawn = DrawnHits();
        std::vector<EntityRec> drawnProfiles =
            Profiles(Records(session.State.MultiPartMode ? session.WorkFile("prw") : session.WorkFile("drw")));
        const std::int32_t drawnEntities = session.State.EntityCount - 1;

        const std::string stem = Select(first.ProgramFile);
        std::vector<Hit> selected = Hits(stem);
        std::vector<EntityRec> selectedProfiles = Profiles(Records(stem + "drw"));
        if (!inOrder) {
            auto byPlace = [](const Hit& a, const Hit& b) { return std::tie(a.X, a.Y) < std::tie(b.X, b.Y); };
            std::sort(drawn.begin(), drawn.end(), byPlace);
            std::sort(selected.begin(), selected.end(), byPlace);
        }
        ASSERT_EQ(selected.size(), drawn.size()) << name;
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            EXPECT_NEAR(selected[i].X, drawn[i].X, 0.01) << name << " hit " << i;
            EXPECT_NEAR(selected[i].Y, drawn[i].Y, 0.01) << name << " hit " << i;
            EXPECT_TRUE(SameTool(selected[i].Tool, drawn[i].Tool)) << name << " hit " << i;
            EXPECT_NEAR(selected[i].C, drawn[i].C, 0.01) << name << " hit " << i;
        }
        if (!profilesRead) {
            EXPECT_FALSE(drawnProfiles.empty());
            EXPECT_TRUE(selectedProfiles.empty());
            std::printf("round trip %s: %d entities, %zu hits checked; %zu profiles not read back\n", name.c_str(),
                        drawnEntities, drawn.size(), drawnProfiles.size());
            return;
        }
        ASSERT_EQ(selectedProfiles.size(), drawnProfiles.size()) << name;
        for (std::size_t i = 0; i < drawnProfiles.size(); ++i) {
            const EntityRec& a = drawnProfiles[i];
            const EntityRec& b = selectedProfiles[i];
            EXPECT_EQ(b.Kind, a.Kind) << name << " profile " << i;
            EXPECT_TRUE(Near(a.Points.Start, b.Points.Start)) << name << " profile " << i;
            EXPECT_TRUE(Near(a.Points.End, b.Points.End)) << name << " profile " << i;
            if (a.Kind == EntityKind::ArcProfile) {
                EXPECT_TRUE(Near(a.Points.Position, b.Points.Position)) << name << " profile " << i;
                EXPECT_NEAR(a.Values[11], b.Values[11], 0.01) << name << " profile " << i;
            }
            EXPECT_EQ(b.Compensation, a.Compensation) << name << " profile " << i;
        }

        LoadResult loaded = LoadProgram(session, "Dorvenis", name);
        ASSERT_TRUE(loaded.Loaded) << (loaded.Message.empty() ? "" : loaded.Message[0]);
        WriteResult second = WriteProgram(session, "Dorvenis", name, ask, today);
        ASSERT_TRUE(second.Written) << (second.Message.empty() ? "" : second.Message[0]);
        EXPECT_EQ(*ReadLines(second.ProgramFile), *firstText) << name;

        std::printf("round trip %s: %d entities, %zu hits, %zu profiles checked\n", name.c_str(), drawnEntities,
                    drawn.size(), drawnProfiles.size());
    }

    void Punch(double x, double y, int station, double index = 0) {
        Add(ComposePunch(x, y, index, 0, ToolOf(station), session.Last(), session.Limits()));
    }
    void Move(double x, double y, int station) {
        Add(ComposePunch(x, y, 0, 1, ToolOf(station), session.Last(), session.Limits()));
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
    ArcFields PolarArc(double cx, double cy, double r, double a1, double a2) {
        ArcFields f;
        f.Option = 1;
        f.CentreX = cx;
        f.CentreY = cy;
        f.Radius = r;
        f.StartAngle = a1;
        f.FinishAngle = a2;
        f.Settle();
        return f;
    }
};

TEST_F(RoundTripTest, EveryPunchingKindWithPlainAndAutoindexToolsInMillimetres) {
    StartWithSheet(1500, 1000);
    Punch(100, 100, 1);
    Punch(150.25, 100.5, 1);
    Add(ComposeLine(Line(100, 200, 400, 260, 25), 0, 0, ToolOf(2), session.PlasmaSettingsArray()));
    GridFields grid;
    grid.X = 500;
    grid.Y = 300;
    grid.Row = {120, 30, 0};
    grid.Column = {0, 40, 3};
    grid.Angle = 0;
    Add(ComposeGrid(grid, 0, ToolOf(1)));
    ArcFields hits = PolarArc(800, 500, 60, 0, 180);
    hits.Change(ArcFields::AngularPitchField, 45);
    Add(ComposeArc(hits, 0, false, 0, ToolOf(1), session.PlasmaSettingsArray()));
    // The autoindex station: the Reverse pass adds each C word to the C in force, the program
    // states the angle of each block, so a single index angle other than 0 comes last.
    ArcFields turning = PolarArc(1000, 500, 80, 90, 270);
    turning.Change(ArcFields::HitsField, 7);
    Add(ComposeArc(turning, 0, true, 0, ToolOf(5), session.PlasmaSettingsArray()));
    Punch(200, 120, 5, 30);
    Move(1200, 700, 1);
    Add(ComposeDwell(0.5, session.Last()));
    Add(ComposeStop(1200, 700, false, session.Last(), session.Limits()));
    Punch(1300, 800, 2);
    RoundTrip("RTPUNCH", true);
}

TEST_F(RoundTripTest, NibbledCircleAndRepositionInMillimetres) {
    StartWithSheet(2500, 1000);
    ArcFields nibble = PolarArc(300, 300, 50, 0, 0);  // a full circle
    nibble.Change(ArcFields::NibblePitchField, 5);
    Add(ComposeArc(nibble, 0, false, 0, ToolOf(1), session.PlasmaSettingsArray()));
    Punch(600, 300, 2);
    double offset = 0;
    Add(ComposeReposition(1000, 300, 500, 2, session.Limits(), offset));
    Punch(700, 300, 2);
    RoundTrip("RTNIBBLE", true);
}

TEST_F(RoundTripTest, ProfilesWithThePlasmaToolAndPunchesAround) {
    StartWithSheet(1500, 1000);
    session.Plasma().CutSpeed = 3000;
    session.Plasma().Kerf = 1.5f;
    Punch(50, 50, 1);
    Add(ComposeLine(Line(100, 100, 300, 100, 0), 0, 1, ToolOf(-1), session.PlasmaSettingsArray()));
    Add(ComposeLine(Line(300, 100, 300, 200, 0), 0, 1, ToolOf(-1), session.PlasmaSettingsArray()));
    Add(ComposeArc(PolarArc(250, 200, 50, 0, 180), 0, false, 1, ToolOf(-1), session.PlasmaSettingsArray()));
    Add(ComposeArc(PolarArc(500, 500, 40, 90, 0), 0, false, 2, ToolOf(-1), session.PlasmaSettingsArray()));
    Punch(700, 700, 2);
    RoundTrip("RTPROFILE", true, false);
}

TEST_F(RoundTripTest, InchesFromInchValues) {
    session.State.ImperialDialogue = true;
    StartWithSheet(BoxLength("48", true), BoxLength("36", true));
    session.State.ImperialDialogue = true;
    Punch(BoxLength("2", true), BoxLength("3.125", true), 1);
    Add(ComposeLine(Line(BoxLength("4", true), BoxLength("4", true), BoxLength("10", true), BoxLength("4", true),
                         BoxLength("1.5", true)),
                    0, 0, ToolOf(2), session.PlasmaSettingsArray()));
    GridFields grid;
    grid.X = BoxLength("12", true);
    grid.Y = BoxLength("6", true);
    grid.Row = {0, BoxLength("1", true), 4};
    grid.Column = {0, BoxLength("0.75", true), 3};
    Add(ComposeGrid(grid, 0, ToolOf(1)));
    RoundTrip("RTINCH", true);
}

TEST_F(RoundTripTest, MultiPartByToolGroups) {
    StartWithSheet(200, 150);
    Punch(20, 20, 1);
    Punch(60, 20, 1);
    Add(ComposeLine(Line(20, 60, 120, 60, 20), 0, 0, ToolOf(2), session.PlasmaSettingsArray()));
    Punch(150, 100, 5);
    NestFields nest{2500, 1000, 3, 2, 10, 10, 20, 30, 0};
    ASSERT_TRUE(session.ConfirmMultiPart(nest).Ok);
    RoundTrip("RTMULTI", false);
}

}  // namespace
}  // namespace kirvana
