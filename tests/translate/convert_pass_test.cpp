// The block pass on sequences of blocks, and whole runs of ConvertProgram on files.
#include <filesystem>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/number.h"
#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "translate/convert.h"
#include "translate/convert_steps.h"

namespace kirvana::convert {
namespace {

// One block pass over blocks given one at a time.
struct Blocks {
    ConvertSettings Settings;
    SubroutineTable Table;
    ConvertState State;
    std::int16_t Dialect;
    BlockPass Pass;

    explicit Blocks(std::int16_t dialect = PlainDialect, BlockPass pass = BlockPass::Main)
        : Dialect(dialect), Pass(pass) {
        StartBlockPass(State, pass);
    }
    std::string operator()(std::string_view line) {
        return ConvertBlock(State, BlockContext{Settings, Dialect, Pass, Table}, line);
    }
};

// ---- Program language ---------------------------------------------------------------------

TEST(ProgramLanguage, G101IsNotG10AndG100Is) {
    Blocks pass;
    EXPECT_EQ(pass("G101 X10 Y10"), "N0001 G101 X10 Y10");
    EXPECT_EQ(pass.State.ArcMode, 1);
    // "G100" holds "G10": it becomes "M100", which is profiling mode.
    Blocks other;
    other("G100");
    EXPECT_TRUE(other.State.ProfilerMode);
}

TEST(ProgramLanguage, M100IsProfilingModeButOrderingCutsM10OutOfIt) {
    // The recognition of step 33 reads "M100", not "M10"; the word ordering then cuts the
    // substring "M10" to the front of the M group.
    Blocks pass;
    EXPECT_EQ(pass("M100"), "N0001 M10 0");
    EXPECT_TRUE(pass.State.ProfilerMode);
    EXPECT_EQ(pass("M101"), "N0002 M10 1");
    EXPECT_FALSE(pass.State.ProfilerMode);
}

TEST(ProgramLanguage, BlockWithoutCodeTakesModalCodeOrG81) {
    Blocks pass;
    EXPECT_EQ(pass("X10 Y20"), "N0001 G81 X10 Y20");
    EXPECT_EQ(pass("G01 X0 Y0"), "N0002 P8=2.5 P6=-999 G01 X0 Y0");
    EXPECT_EQ(pass("X10 Y20"), "N0003 P8=2.5 P6=-999 G01 X10 Y20");
    EXPECT_EQ(pass("G00 X5"), "N0004 G00 X5");
    EXPECT_EQ(pass("X10 Y20"), "N0005 G81 X10 Y20");
}

TEST(ProgramLanguage, NInsideAnotherWordSetsTheCount) {
    Blocks pass;
    pass("N0050 X1");
    EXPECT_EQ(pass("X2"), "N0051 G81 X2");
    // "ON12" holds the first "N": the block keeps no N word of its own and the count is 12.
    EXPECT_EQ(pass("X1 ON12"), "N12 G81 X1 O");
    EXPECT_EQ(pass("X2"), "N0013 G81 X2");
}

TEST(ProgramLanguage, DoubleSkipMarksAreTestedFirst) {
    Blocks pass(PlainDialect, BlockPass::Subroutines);
    EXPECT_EQ(pass("//X1"), "G81 X1 M87 5=2");
    EXPECT_EQ(pass("\\\\X1"), "G81 X1 M87 5=2");
    EXPECT_EQ(pass("/X1"), "G81 X1 M87 5=1");
    EXPECT_EQ(pass("\\X1"), "G81 X1 M87 5=1");
}

// ---- Convert pass edge cases ----------------------------------------------------------------

TEST(ConvertEdge, G61WithRadiusStep) {
    Blocks pass(BracketDialect);
    EXPECT_EQ(pass("G61 X10 Y20 R2.0"), "N0001 P8=2.0 P6=-999 G01 X10 Y20");
    EXPECT_DOUBLE_EQ(pass.State.NibbleStep, 2.0);
    EXPECT_EQ(pass.State.MotionMode, 1);
}

TEST(ConvertEdge, DefaultStepOnG01) {
    Blocks pass;
    EXPECT_EQ(pass("G01 X10"), "N0001 P8=2.5 P6=-999 G01 X10");
}

TEST(ConvertEdge, ToolAloneSelectsAndWithPositionHits) {
    Blocks pass;
    EXPECT_EQ(pass("T12"), "N0001 G80 T12");
    EXPECT_EQ(pass("X10 T12"), "N0002 G81 X10 T12");
}

TEST(ConvertEdge, ProfilingModeUnknownBlockStays) {
    Blocks pass;
    pass("M100");
    EXPECT_EQ(pass("X10 Y10"), "N0002 X10 Y10");
    EXPECT_EQ(pass("T5"), "N0003 T5");
}

TEST(ConvertEdge, BareBlockAfterG103IsG102) {
    Blocks pass;
    pass("M100");
    EXPECT_EQ(pass("G103 X5 Y5 I1 J0"), "N0002 G103 X5 Y5 I1 J0");
    EXPECT_EQ(pass.State.ArcMode, 2);
    EXPECT_EQ(pass("X10"), "N0003 G102 X10");
}

TEST(ConvertEdge, BareBlockAfterG103UnderArcSwap) {
    Blocks pass;
    pass.Settings.ProfilerArcSwap = true;
    pass("M100");
    EXPECT_EQ(pass("G103 X5 Y5 I1 J0"), "N0002 G102 X5 Y5 I1 J0");
    EXPECT_EQ(pass("X10"), "N0003 G103 X10");
}

TEST(ConvertEdge, DwellUnderModalG01GetsStepButNotG01) {
    Blocks pass;
    pass("G01 X0 Y0");
    EXPECT_EQ(pass("G04 X2"), "N0002 P8=2.5 P6=-999 G04 X2");
    EXPECT_EQ(pass("M50"), "N0003 P8=2.5 P6=-999 M50");
}

TEST(ConvertEdge, CallInMainTextAndInSubroutineText) {
    Blocks pass(BangDialect);
    pass.Table.Read("ABC, 1\n******\n");
    // The rewrite gives "G68 S1 Q3"; word ordering then puts Q (axis group) before S.
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P0=3)", pass.Table, pass.State.Reader), " G68 S1 Q3 ! (PSUB,ABC,P0=3)");
    EXPECT_EQ(pass("(PSUB,ABC,P0=3)"), "N0001 P10=1 G68 Q3 S1 ;(PSUB,ABC,P0=3)");
}

TEST(ConvertEdge, SequenceWordKeptInMainTextDroppedInSubroutines) {
    Blocks main;
    EXPECT_EQ(main("N0010 G01 X1"), "N0010 P8=2.5 P6=-999 G01 X1");
    EXPECT_EQ(main.State.SequenceCount, 10);
    Blocks subroutines(PlainDialect, BlockPass::Subroutines);
    EXPECT_EQ(subroutines("N0010 G01 X1"), "P8=2.5 P6=-999 G01 X1");
}

TEST(ConvertEdge, SkipMarkInMainTextOnlyWithItsOwnNWord) {
    Blocks main;
    EXPECT_EQ(main("/N10 X1"), "N10 G81 X1 M87 5=1");
    EXPECT_EQ(main("/X1"), "N0011 / G81 X1");
    Blocks subroutines(PlainDialect, BlockPass::Subroutines);
    EXPECT_EQ(subroutines("/N10 X1"), "G81 X1 M87 5=1");
    EXPECT_EQ(subroutines("/X1"), "G81 X1 M87 5=1");
}

TEST(ConvertEdge, EndifResetsTheRunningCount) {
    Blocks pass;
    pass("N0050 X1");
    EXPECT_EQ(pass("ENDIF"), "ENDIF");
    EXPECT_EQ(pass.State.SequenceCount, 0);
    EXPECT_EQ(pass("X2"), "N0001 G81 X2");
}

TEST(ConvertEdge, EndifAsLastWordStaysInBothPasses) {
    Blocks main;
    EXPECT_EQ(main("N0007 ENDIF"), "N0007 ENDIF");
    Blocks subroutines(PlainDialect, BlockPass::Subroutines);
    EXPECT_EQ(subroutines("N0007 ENDIF"), "ENDIF");
    EXPECT_EQ(subroutines("endif ; end of section"), "ENDIF ;end of section");
}

// ---- Block pass steps -------------------------------------------------------------------------

TEST(BlockPass, CommentMarksPerDialect) {
    Blocks bang(BangDialect);
    EXPECT_EQ(bang("X1 ! first hole"), "N0001 G81 X1 ;first hole");
    EXPECT_EQ(bang("X2 ; second hole"), "N0002 G81 X2 ;second hole");
    Blocks bracket(BracketDialect);
    EXPECT_EQ(bracket("X1 (HOLE) REST"), "N0001 G81 X1 ;HOLE");
    EXPECT_EQ(bracket("X2 ; a ) b"), "N0002 G81 X2 ;a ) b");
    Blocks plain;
    EXPECT_EQ(plain("X1 ;"), "N0001 G81 X1 ;");
    EXPECT_EQ(plain("X1 ! 5"), "N0002 G81 X1 ! 5");  // "!" marks no comment in dialect 0
}

TEST(BlockPass, SheetSizeFromTheFirstValidComment) {
    Blocks pass(BangDialect);
    pass("! SHEET SIZE : 0 x 100");
    EXPECT_EQ(pass.State.SheetX, 0.0f);
    pass("! SHEET SIZE : 2500 x 1250");
    pass("! SHEET SIZE : 1000 x 500");
    EXPECT_EQ(pass.State.SheetX, 2500.0f);
    EXPECT_EQ(pass.State.SheetY, 1250.0f);
    Blocks subroutines(BangDialect, BlockPass::Subroutines);
    subroutines("! SHEET SIZE : 2500 x 1250");
    EXPECT_EQ(subroutines.State.SheetX, 0.0f);
}

TEST(BlockPass, OptionalStopAndDwell) {
    Blocks pass;
    EXPECT_EQ(pass("M01"), "N0001 M00");
    EXPECT_EQ(pass("G04 F1.5"), "N0002 G04 X1.5");
    EXPECT_EQ(pass("G04 X2 F1"), "N0003 G04 X2 F1");
}

TEST(BlockPass, MirrorCodes) {
    Blocks pass;
    EXPECT_EQ(pass("G11"), "N0001 M11");
    EXPECT_EQ(pass("G12"), "N0002 M12");
    EXPECT_EQ(pass("G13"), "N0003 M13");
    EXPECT_EQ(pass("G10"), "N0004 M10");
}

TEST(BlockPass, ArcSourceFormsWithSwapAndCentre) {
    Blocks pass(BracketDialect);
    EXPECT_EQ(pass("G62 X10 Y0 I5 J0 R1.5"), "N0001 P8=1.5 P6=-999 G02 X10 Y0 I5 J0");
    Blocks swapped(BracketDialect);
    swapped.Settings.SwapArcWords = true;
    swapped.Settings.ArcCentreIncremental = true;
    EXPECT_EQ(swapped("G62 X10 Y0 I5 J-2 R1.5"), "N0001 P8=1.5 P6=-999 G03 X10 Y0 I-5 J2");
    EXPECT_EQ(swapped("G63 X0 Y0 I-5 J0"), "N0002 P8=1.5 P6=-999 G02 X0 Y0 I5 J0");
}

TEST(BlockPass, ModalArcsOnlyOutsideDialectTwo) {
    Blocks plain;
    plain("G02 X10 Y0 I5 J0");
    EXPECT_EQ(plain("X0 Y0 I-5 J0"), "N0002 P8=2.5 P6=-999 G02 X0 Y0 I-5 J0");
    Blocks bracket(BracketDialect);
    bracket("G02 X10 Y0 I5 J0");
    EXPECT_EQ(bracket("X0 Y0 I-5 J0"), "N0002 G81 X0 Y0 I-5 J0");
}

TEST(BlockPass, SheetRepositionSourceForms) {
    Blocks pass;
    EXPECT_EQ(pass("M22 X500 Y20"), "N0001 P6=-999 G95 I500 J20 K-999");
    EXPECT_EQ(pass("M22 X500"), "N0002 P6=-999 G95 I500 J-999 K-999");
    EXPECT_EQ(pass("M91 P10=400 P11=10"), "N0003 P6=-999 G95 I400 J10 K-999");
}

TEST(BlockPass, MoveWithoutHitSourceForms) {
    Blocks pass;
    EXPECT_EQ(pass("M20 X100 Y50"), "N0001 G80 X100 Y50");
    EXPECT_EQ(pass("G77 Y50 X100"), "N0002 G80 Y50 X100");
}

TEST(BlockPass, CyclesGetTheirParameters) {
    Blocks pass;
    EXPECT_EQ(pass("G26 X10 Y10 I100 J0 P1=5 P3=2 P4=20"),
              "N0001 P1=5 P3=2 P4=20 P2=-999 P5=-999 P6=-999 P7=-999 P8=-999 P9=-999 P10=0 P11=0 G26 X10 Y10 I100 J0");
    EXPECT_EQ(pass("G28 X0 Y0 R50 I50 J0 P1=8"),
              "N0002 P1=8 P2=-999 P3=-999 P4=-999 P5=-999 P6=-999 P7=-999 P8=-999 P9=-999 P10=-999 G28 X0 Y0 R50 I50 J0");
    EXPECT_EQ(pass("G36 X0 Y0 I100 J0"),
              "N0003 P8=2.5 P1=-999 P2=-999 P3=-999 P4=-999 P5=-999 P6=-999 P7=-999 P9=-999 P10=0 P11=0 G36 X0 Y0 "
              "I100 J0");
    EXPECT_EQ(pass("G65 X0 Y0 I50 J30 R3"), "N0004 P8=3 G65 X0 Y0 I50 J30");
    EXPECT_EQ(pass("G37 X0 Y0 R20 I20 J0 P1=90"),
              "N0005 P1=90 P8=3 P2=-999 P3=-999 P4=-999 P5=-999 P6=-999 P7=-999 P9=-999 P10=-999 G37 X0 Y0 R20 I20 "
              "J0");
    EXPECT_EQ(pass("G64 X100 Y100 J30 A0 B6"), "N0006 G64 X100 Y100 J30 A0 B6");
    EXPECT_EQ(pass("G66 X0 Y0 I10 J0 B5"), "N0007 G66 X0 Y0 I10 J0 B5");
}

TEST(BlockPass, MacroBlockParametersDifferPerText) {
    Blocks main;
    std::string line = main("G06");
    EXPECT_NE(line.find("P11=-999 P12=-999"), std::string::npos) << line;
    EXPECT_NE(line.find("P101=-999"), std::string::npos) << line;
    EXPECT_NE(line.find("P110=-999"), std::string::npos) << line;
    EXPECT_EQ(line.find("P1=-999"), std::string::npos) << line;
    Blocks subroutines(PlainDialect, BlockPass::Subroutines);
    EXPECT_EQ(subroutines("G06"), "P1=-999 P2=-999 P3=-999 P4=-999 P5=-999 P6=-999 P7=-999 P8=-999 P9=-999 G06");
}

TEST(BlockPass, GridCallParameters) {
    Blocks pass(BangDialect);
    pass.Table.Read("GRID, 1\n******\n");
    EXPECT_EQ(pass("G98 X100 Y100 P1=3 P2=50 P3=2 P4=40 (PSUB,GRID)"),
              "N0001 P1=3 P2=50 P3=2 P4=40 P5=-999 P6=-999 P7=-999 P8=-999 P9=-999 P10=1 P11=1 G98 X100 Y100 S1 "
              ";(PSUB,GRID)");
}

TEST(BlockPass, ConditionsAndJumpsKeepTheirOrder) {
    Blocks pass(BangDialect);
    // The jump rewrite also runs on the rewritten condition and trims its front.
    EXPECT_EQ(pass("IF P12<>5 GOTO N100 ! loop"), "IF (P12!=5) GOTO 100 ;loop");
    EXPECT_EQ(pass.State.SequenceCount, 100);
    EXPECT_EQ(pass("IF [P12=1] ABORT"), "N0101 IF ([P12=1]) ABORT ");
    EXPECT_EQ(pass("(GOTO N20)"), " GOTO 20");
}

TEST(BlockPass, BitwisePositionTestCanSkipTheCondition) {
    // "IF" at 1 and "ENDIF" at 5: the test fails and the block is not rewritten.
    Blocks pass;
    EXPECT_EQ(pass("IF  ENDIF"), "IF ENDIF");
    // "IF" at 1 and "ENDIF" at 6: the test passes; the condition runs to the block's length
    // less one, so it is "ENDI".
    EXPECT_EQ(pass("IF   ENDIF"), " IF (ENDI) ");
}

TEST(BlockPass, RoundHoldsAnNThatCountsAsSequenceWord) {
    Blocks pass;
    pass("N0005 X1");
    EXPECT_EQ(pass("G01 X10 YROUND(2.5)"), "N P8=2.5 P6=-999 G01 X10 YROUD(2.5)");
    EXPECT_EQ(pass.State.SequenceCount, 0);
}

TEST(BlockPass, ReturnInSubroutineTextIsWrittenAsItStands) {
    Blocks pass(BangDialect, BlockPass::Subroutines);
    EXPECT_EQ(pass("(END,PSUB)"), "RETURN ;(END,PSUB)");
    EXPECT_EQ(pass("RETURN  X1"), "RETURN  X1");
}

TEST(BlockPass, SequenceCountOverflowIsReported) {
    Blocks pass;
    pass("N32767 X1");
    EXPECT_FALSE(pass.State.Reader.IntegerOverflow);
    EXPECT_EQ(pass("X2"), "N32767 G81 X2");
    EXPECT_TRUE(pass.State.Reader.IntegerOverflow);
}

// ---- Whole runs -------------------------------------------------------------------------------

struct Program {
    TempDir Dir;
    ConvertSettings Settings;
    std::int16_t Dialect = -1;

    Program() {
        Settings.ServiceDir = Dir.Path();
        Settings.CurrentDir = Dir.Path();
    }
    ConvertResult Run(const std::string& org) {
        Dir.Write("prog.org", org);
        return ConvertProgram(Dir.Path() + "prog. ", Dialect, Settings);
    }
    std::string File(const char* extension) const { return ReadFileText(Dir.Path() + "prog." + extension); }
};

TEST(ConvertProgram, BangInLastLineOnlyGivesDialectZero) {
    Program program;
    ConvertResult result = program.Run("X10 Y10 T1\nX20\nM30 ! END\n");
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_EQ(program.Dialect, 0);
    // In dialect 0 the "!" is no comment mark.
    // "END" holds the first "N": no N word is added, and the ordering sorts the letters of "END".
    EXPECT_EQ(program.File("M1"), "N0001 G81 X10 Y10 T1\nN0002 G81 X20\nN ED M30 !\n");
}

TEST(ConvertProgram, SettingsComeFromTheMachineData) {
    MachineData machine;
    machine.SwapArcWords = true;
    machine.ProfilerArcCentre = true;
    Directories dirs;
    dirs.ServiceDir = "/srv/Service/";
    ConvertSettings settings = ConvertSettingsFrom(machine, dirs);
    EXPECT_TRUE(settings.SwapArcWords);
    EXPECT_FALSE(settings.ArcCentreIncremental);
    EXPECT_FALSE(settings.ProfilerArcSwap);
    EXPECT_TRUE(settings.ProfilerArcCentre);
    EXPECT_FALSE(settings.AmadaMachine);
    EXPECT_EQ(settings.ServiceDir, "/srv/Service/");
    EXPECT_EQ(settings.CurrentDir, "");
}

TEST(ConvertProgram, AmadaMachineRunsTheAmadaPass) {
    Program program;
    program.Settings.AmadaMachine = true;
    // "!" would make dialect 1; no detection runs, and the AMADA scaling applies.
    ConvertResult result = program.Run("X1000Y500T1 ! A\nM30\n");
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_EQ(program.Dialect, 5);
    EXPECT_TRUE(FileExists(program.Dir.Path() + "prog.A1"));
    EXPECT_TRUE(FileExists(program.Dir.Path() + "prog.M1"));
}

TEST(ConvertProgram, MissingProgramIsAFault) {
    Program program;
    std::int16_t dialect = 7;
    ConvertResult result = ConvertProgram(program.Dir.Path() + "none.", dialect, program.Settings);
    EXPECT_EQ(result.Status, ConvertStatus::MissingProgram);
    EXPECT_EQ(result.Fault, program.Dir.Path() + "none.org");
}

TEST(ConvertProgram, NotesEachFileOpenedForReading) {
    Program program;
    program.Run("X1\n");
    // The call fix reads "tmp" last.
    EXPECT_EQ(ReadFileText(program.Dir.Path() + "LastFile.txt"), program.Dir.Path() + "prog.tmp\n");
    EXPECT_FALSE(FileExists(program.Dir.Path() + "prog.tmp"));
}

TEST(ConvertProgram, EmptyProgram) {
    Program program;
    EXPECT_EQ(program.Run("").Status, ConvertStatus::Done);
    EXPECT_EQ(program.Dialect, 0);
    EXPECT_EQ(program.File("A1"), "");
    EXPECT_EQ(program.File("M1"), "");
    EXPECT_EQ(program.File("M2"), "");
    EXPECT_EQ(program.File("sbs"), "******\n");
}

TEST(ConvertProgram, CrlfInputLfOutput) {
    Program program;
    program.Run("G90\r\nX1\r\n");
    EXPECT_EQ(program.File("A1"), "G90\nX1\n");
    EXPECT_EQ(program.File("M1"), "N0001 G90\nN0002 G81 X1\n");
}

TEST(ConvertProgram, AReadErrorIsAFileFaultNamingTheFile) {
    // Reads of /proc/self/mem at its start fail with an I/O error, as a failing disk does.
    Program program;
    std::filesystem::create_symlink("/proc/self/mem", program.Dir.Path() + "prog.org");
    ConvertResult result = ConvertProgram(program.Dir.Path() + "prog.", program.Dialect, program.Settings);
    EXPECT_EQ(result.Status, ConvertStatus::FileFault);
    EXPECT_EQ(result.Fault, program.Dir.Path() + "prog.org");
    Program withGsb;
    std::filesystem::create_symlink("/proc/self/mem", withGsb.Dir.Path() + "HOLES.GSB");
    result = withGsb.Run("! a call\n(GSUB,HOLES)\nM30\n");
    EXPECT_EQ(result.Status, ConvertStatus::FileFault);
    EXPECT_EQ(result.Fault, withGsb.Dir.Path() + "HOLES.GSB");
}

TEST(ConvertProgram, GsbFilesAreCopiedForEachCall) {
    Program program;
    program.Dir.Write("holes.gsb", "(ID,GSUB,HOLES)\n\n  X10 Y10  \n(END,GSUB)\n");
    program.Run("! two calls\n(GSUB,HOLES)\n(GSUB,Holes,P0=2)\n(GSUB,MISSING)\nM30\n");
    EXPECT_EQ(program.Dialect, 1);
    EXPECT_EQ(program.File("sbs"), "HOLES, 1\nHoles, 2\n******\n");
    EXPECT_EQ(program.File("A2"),
              "(ID,GSUB,HOLES)\nX10 Y10\n(END,GSUB)\n(ID,GSUB,HOLES)\nX10 Y10\n(END,GSUB)\n");
    EXPECT_EQ(program.File("M1"),
              "N0001 ;two calls\n"
              "N0002 P10=1 G68 Q1 S1 ;(GSUB,HOLES)\n"
              "N0003 P10=1 G68 Q2 S1 ;(GSUB,Holes,P0=2)\n"
              "N0004 P10=1 G68 Q1 S-1 ;(GSUB,MISSING)\n"
              "N0005 M30\n");
    EXPECT_EQ(program.File("M2"),
              "N1000 ;(ID,GSUB,HOLES)\nG81 X10 Y10\nRETURN ;(END,GSUB)\n"
              "N1000 ;(ID,GSUB,HOLES)\nG81 X10 Y10\nRETURN ;(END,GSUB)\n");
}

TEST(ConvertProgram, GsbNamesStayInTheCurrentDirectory) {
    Program program;
    program.Settings.CurrentDir = program.Dir.Path() + "root/";
    program.Dir.Write("root/INSIDE.GSB", "(ID,GSUB,INSIDE)\nX1 Y1\n(END,GSUB)\n");
    program.Dir.Write("outside/SUBR.GSB", "(ID,GSUB,SUBR)\nX666 Y666\n(END,GSUB)\n");
    program.Dir.Write("SUBR.GSB", "(ID,GSUB,SUBR)\nX667 Y667\n(END,GSUB)\n");
    std::string outside = program.Dir.Path() + "outside/SUBR";
    program.Run("! calls\n(GSUB,../outside/SUBR)\n(GSUB,..\\SUBR)\n(GSUB," + outside + ")\n(GSUB,INSIDE)\nM30\n");
    // Only the file inside the current directory is read; the others are calls of nothing.
    EXPECT_EQ(program.File("sbs"), "INSIDE, 1\n******\n");
    EXPECT_EQ(program.File("A2"), "(ID,GSUB,INSIDE)\nX1 Y1\n(END,GSUB)\n");
    EXPECT_EQ(program.File("M1").find("X666"), std::string::npos);
    EXPECT_EQ(program.File("M2").find("X66"), std::string::npos);
}

TEST(ConvertProgram, BinaryGarbageAndLongLines) {
    Program program;
    std::string garbage;
    for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 37 + 11) % 256);
    garbage += "\n" + std::string(100000, 'X') + "\n" + std::string(100000, '(') + "\nIF GOTO\nIF\n(PSUB,\n";
    ConvertResult result = program.Run(garbage);
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_FALSE(program.File("M1").empty());
}

TEST(ConvertProgram, DeeplyNestedExpressionsEndQuietly) {
    Program program;
    program.Settings.ProfilerArcCentre = true;
    std::string nested = std::string(20000, '(') + "1" + std::string(20000, ')');
    std::string rounds;
    for (int i = 0; i < 200; ++i) rounds += "ROUND(";
    rounds += "2.5" + std::string(200, ')');
    ConvertResult result =
        program.Run("! deep\nM100\nG102 X1 I" + nested + " J" + rounds + "\nG102 X1 I(((1 J1)\nM30\n");
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    std::string m1 = program.File("M1");
    // The first arc: I reads 1 and J, ROUND nested beyond the reader's depth, reads 0. The
    // rewrite copies the parentheses behind the new values, and each "N" of "ROUND" counts as
    // the sequence word: the count starts again at 1.
    std::size_t third = m1.find("\nN");
    ASSERT_NE(third, std::string::npos);
    EXPECT_NE(m1.find(" G102 X1 I-1 ((((("), std::string::npos);
    EXPECT_NE(m1.find(" J0 ROUD(ROUD("), std::string::npos);
    // Unbalanced parentheses read 0.
    EXPECT_NE(m1.find("\nN0001 G102 X1 I0 (((1 J0 )\nN0002 M30\n"), std::string::npos);
}

TEST(ConvertProgram, RoundOverflowIsReported) {
    Program program;
    program.Settings.ProfilerArcCentre = true;
    ConvertResult result = program.Run("! profile\nM100\nG102 X10 Y0 IROUND(40000) J0\nM30\n");
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_EQ(program.Dialect, 1);
    EXPECT_TRUE(result.IntegerOverflow);
    EXPECT_EQ(result.Fault, "16-bit overflow in " + program.Dir.Path() + "prog.A1 line 3");
}

TEST(ConvertProgram, SheetSizeAndStepAreReturned) {
    Program program;
    ConvertResult result = program.Run("! SHEET SIZE : 1250 x 2500\nG01 X10 P8=1.25\nM30\n");
    EXPECT_EQ(result.SheetX, 1250.0f);
    EXPECT_EQ(result.SheetY, 2500.0f);
    EXPECT_DOUBLE_EQ(result.NibbleStep, 1.25);
}

TEST(ConvertProgram, BracketSplitterClosesEachSubroutine) {
    Program program;
    program.Run("G90 (MAIN)\nX10 Y10 C1 B2\nM30\nS1 (FIRST)\nX1\nS2\nX2\n");
    EXPECT_EQ(program.Dialect, 2);
    EXPECT_EQ(program.File("A1"), "G90 (MAIN)\nX10 Y10 C1 B2\nM30\n");
    EXPECT_EQ(program.File("A2"), "S1 (FIRST)\nX1\n(ENDSUB)\nS2\nX2\n(ENDSUB)\n");
    EXPECT_EQ(program.File("sbs"), "1, 1\n2, 2\n******\n");
    EXPECT_EQ(program.File("M1"), "N0001 G90 ;MAIN\nN0002 P10=1 G68 X10 Y10 Q2 S1 ;1\nN0003 M30\n");
    EXPECT_EQ(program.File("M2"), "N1000 ;1\nG81 X1\nRETURN ;ENDSUB\nN2000 ;2\nG81 X2\nRETURN ;ENDSUB\n");
}

}  // namespace
}  // namespace kirvana::convert
