// The office seat's dialogue commands, run as a script runs them: generate a program from the
// dialogue's drawing and load a program back into the dialogue.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <string>

#include "core/paths.h"
#include "tests/dialogue/dialogue_fixture.h"

#include "tests/support/office_run.h"

namespace kirvana {
namespace {

// stdout and stderr.
OfficeRun Office(const std::string& arguments) { return RunOffice(arguments, " 2>&1"); }

class OfficeDialogueTest : public DialogueFixture {
protected:
    // A dialogue of a few punches, left as the operator leaves it (its `.cfg` and `.trt`).
    void DrawAndLeave() {
        StartWithSheet();
        session.State.ProgName = "OFFICE1";
        session.State.ProgDir = "Dorvenis";
        session.State.ProgText = "FROM THE OFFICE";
        Add(ComposePunch(100, 100, 0, 0, ToolOf(1), session.Last(), session.Limits()));
        Add(ComposePunch(200, 100, 30, 0, ToolOf(5), session.Last(), session.Limits()));
        ASSERT_TRUE(session.Leave());
    }
    std::string Root() const { return demo.Path(); }
    std::string Generate(const std::string& name, const std::string& extra = "") const {
        return "generate " + Root() + "Dialogue/Dlgprg.drw --root " + Root() + " --dir Dorvenis --program " + name +
               " --date 25-11-2026" + extra;
    }
};

TEST_F(OfficeDialogueTest, GenerateWritesTheProgramAndItsSettings) {
    DrawAndLeave();
    OfficeRun run = Office(Generate("OFFICE1"));
    EXPECT_EQ(run.Code, 0) << run.Output;
    const std::string program = Root() + "Programs/Dorvenis/OFFICE1.prg";
    EXPECT_NE(run.Output.find("program: " + program), std::string::npos) << run.Output;
    EXPECT_NE(run.Output.find("blocks: 15"), std::string::npos) << run.Output;
    auto lines = ReadLines(program);
    ASSERT_TRUE(lines);
    EXPECT_EQ((*lines)[0], "N0010 ! PROGRAM NAME : OFFICE1");
    EXPECT_EQ((*lines)[3], "N0016 ! DATE : 25-11-2026");
    EXPECT_EQ((*lines)[10], "N0030 X100 Y100 T01");
    EXPECT_EQ((*lines)[11], "N0032 X200 Y100 C30 T05");
    EXPECT_TRUE(FileExists(Root() + "Programs/Dorvenis/OFFICE1.stg"));
}

TEST_F(OfficeDialogueTest, AnExistingProgramIsOverwrittenOnlyWithYes) {
    DrawAndLeave();
    ASSERT_EQ(Office(Generate("OFFICE1")).Code, 0);
    const std::string program = Root() + "Programs/Dorvenis/OFFICE1.prg";
    auto before = ReadLines(program);
    // The dialogue gains a punch; without --yes the old program stays.
    session.Start();
    Add(ComposePunch(300, 100, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    OfficeRun refused = Office(Generate("OFFICE1"));
    EXPECT_EQ(refused.Code, 1);
    EXPECT_NE(refused.Output.find("Already Exists !"), std::string::npos) << refused.Output;
    EXPECT_EQ(*ReadLines(program), *before);
    EXPECT_EQ(Office(Generate("OFFICE1", " --yes")).Code, 0);
    EXPECT_EQ(ReadLines(program)->size(), before->size() + 1);
}

TEST_F(OfficeDialogueTest, BadNamesAndBadUsage) {
    DrawAndLeave();
    OfficeRun bad = Office("generate " + Root() + "Dialogue/Dlgprg.drw --root " + Root() + " --dir .. --program X");
    EXPECT_EQ(bad.Code, 1);
    EXPECT_NE(bad.Output.find("Invalid Directory Name !"), std::string::npos);
    EXPECT_EQ(Office("generate --root " + Root()).Code, 2);
    EXPECT_EQ(Office("load-dialogue --root " + Root() + " --dir Dorvenis").Code, 2);
    OfficeRun missing = Office("load-dialogue --root " + Root() + " --dir Dorvenis --program NOSUCH");
    EXPECT_EQ(missing.Code, 1);
    EXPECT_NE(missing.Output.find("Program Does Not Exist !"), std::string::npos);
    OfficeRun notDrawing =
        Office("generate " + Root() + "Control.cfg --root " + Root() + " --dir Dorvenis --program Y");
    EXPECT_EQ(notDrawing.Code, 1);
    EXPECT_EQ(Office("generate --help").Code, 0);
}

TEST_F(OfficeDialogueTest, LoadDialogueReadsTheProgramIntoTheWorkFiles) {
    DrawAndLeave();
    ASSERT_EQ(Office(Generate("OFFICE1")).Code, 0);
    ASSERT_TRUE(session.Clear());
    OfficeRun run = Office("load-dialogue --root " + Root() + " --dir Dorvenis --program OFFICE1");
    EXPECT_EQ(run.Code, 0) << run.Output;
    // The Sheet, the two punches and the Load Position of the end block "M50 M99".
    EXPECT_NE(run.Output.find("records: 4"), std::string::npos) << run.Output;
    EXPECT_EQ(*ReadLines(session.WorkFile("cfg")),
              (std::vector<std::string>{"OFFICE1", "Dorvenis", "FROM THE OFFICE", "******"}));
    ASSERT_TRUE(session.Start().empty());
    EXPECT_EQ(session.State.EntityCount, 4);
    EXPECT_EQ(session.Entity(4)->Kind, EntityKind::LoadPosition);
    EXPECT_FLOAT_EQ(session.Entity(3)->Points.Position.X, 200);
    // Generated again from the loaded dialogue, the program is the same.
    auto first = ReadLines(Root() + "Programs/Dorvenis/OFFICE1.prg");
    ASSERT_EQ(Office(Generate("OFFICE2")).Code, 0);
    auto second = ReadLines(Root() + "Programs/Dorvenis/OFFICE2.prg");
    ASSERT_TRUE(first && second);
    ASSERT_EQ(first->size(), second->size());
    for (std::size_t i = 1; i < first->size(); ++i) EXPECT_EQ((*second)[i], (*first)[i]);
}

}  // namespace
}  // namespace kirvana
