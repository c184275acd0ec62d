// Selection of programs into the active slots, end to end on a copy of the demo installation:
// in office mode, and against the simulated card over the Ethernet link.
#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "controller/cardsim/card_simulator.h"
#include "controller/pmac_ethernet_link.h"
#include "core/paths.h"
#include "system/startup.h"
#include "tests/core/temp_dir.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

class SelectionTest : public ::testing::Test {
protected:
    // A start of the process on the installation, with or without the simulated card.
    void Start(Process& process, CardLink* link = nullptr) {
        StartupSteps steps;
        ASSERT_EQ(Main(process, platform_, link, steps).Result, StartOutcome::Kind::Started);
    }
    void CardAt(int port, int deadlineMs = 0) {
        dir_.Write("Control.cnc", "Card in use: TRUE\nPoll log: FALSE\n******\n");
        dir_.Write("PMAC.cfg", "Save: N\nWait: 0\nPoll: 50\nDelay: 50\nCard: 127.0.0.1:" + std::to_string(port) +
                                   "\nDeadline: " + std::to_string(deadlineMs) + "\n******\n");
    }
    // A start against the simulated card, its faults going through the card fault path.
    void StartWithCard(Process& process, PmacEthernetLink& link) {
        link.SetFaultHandler([&, this](std::int32_t number, const std::string& description) {
            HandleCardFault(process, platform_, &link, StartupSteps{}, number, description);
        });
        Start(process, &link);
    }
    std::vector<std::string> SlotFiles(int slot) {
        std::vector<std::string> found;
        for (const auto& name : ListDirectory(".", false))
            if (name.starts_with("Actvprg" + std::to_string(slot) + ".")) found.push_back(name);
        return found;
    }

    DemoInstallation dir_;
    QuietPlatform platform_;
};

}  // namespace

TEST_F(SelectionTest, SelectsADemoProgramInOfficeMode) {
    Process p;
    Start(p);
    SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01");
    ASSERT_TRUE(outcome.Selected) << outcome.Warning;
    const SlotRecord& r = p.Slots[0];
    EXPECT_TRUE(r.Present);
    EXPECT_EQ(r.ProgramName, "PLATE01");
    EXPECT_EQ(r.ProgramDirPath, "./Programs/Dorvenis/");
    EXPECT_EQ(r.SourceDialect, 1);
    EXPECT_EQ(r.CommentOpen, "!");
    EXPECT_FLOAT_EQ(r.SheetX, 1000);
    EXPECT_FLOAT_EQ(r.SheetY, 500);
    EXPECT_GT(r.Counts[0].SourceRecordCount, 0);
    EXPECT_GT(r.Counts[0].MapWordCount, r.Counts[0].MotionBlockCount);
    for (const char* e :
         {"org", "A1", "A2", "sbs", "M1", "M2", "drw", "dr1", "W1", "RA1", "RM1", "cfg", "trt", "sts", "btc"})
        EXPECT_TRUE(FileExists(std::string("Actvprg1.") + e)) << e;
    EXPECT_EQ(ProgramButtonCaption(1, r), "PLATE01   F10");
}

TEST_F(SelectionTest, EmptyLinesDoNotReachTheSlotSource) {
    dir_.Write("Programs/Dorvenis/GAPS.prg", "G90\n\n   \nT1 X100 Y100\n  X200  \n\nM30\n");
    Process p;
    Start(p);
    ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "GAPS").Selected);
    EXPECT_EQ(*ReadLines("Actvprg1.org"), (std::vector<std::string>{"G90", "T1 X100 Y100", "X200", "M30"}));
}

TEST_F(SelectionTest, NamesOfThirtyTwoCharactersAndNoMore) {
    std::string name32(32, 'A'), name33(33, 'B');
    std::filesystem::copy_file("Programs/Dorvenis/PLATE01.prg", "Programs/Dorvenis/" + name32 + ".prg");
    std::filesystem::copy_file("Programs/Dorvenis/PLATE01.prg", "Programs/Dorvenis/" + name33 + ".prg");
    Process p;
    Start(p);
    EXPECT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", name32).Selected);
    SelectOutcome refused = SelectProgram(p, platform_, nullptr, "Dorvenis", name33);
    EXPECT_FALSE(refused.Selected);
    EXPECT_EQ(refused.Warning, "Invalid Program Name !");
    // Nothing changed: the slot keeps the program of 32 characters.
    EXPECT_EQ(p.Slots[0].ProgramName, name32);
    EXPECT_TRUE(FileExists("Actvprg1.M1"));
}

TEST_F(SelectionTest, RefusalsLeaveTheSlotAsItWas) {
    Process p;
    Start(p);
    ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
    auto files = SlotFiles(1);
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "", "PLATE01").Warning, "Invalid Directory Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, std::string(33, 'D'), "PLATE01").Warning,
              "Invalid Directory Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Dorvenis", "").Warning, "Invalid Program Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Nowhere", "PLATE01").Warning, "Directory Does Not Exist !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Dorvenis", "NONE").Warning, "Program Does Not Exist !");
    p.Running = true;
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Dorvenis", "COVER02").Warning,
              "Can Not Select New Program\n\nWhile Machine Is Running !");
    EXPECT_EQ(p.Slots[0].ProgramName, "PLATE01");
    EXPECT_EQ(SlotFiles(1), files);
    EXPECT_EQ(platform_.Warnings.size(), 6u);
}

TEST_F(SelectionTest, NamesNeverLeadOutOfTheProgramStore) {
    // A program beside the installation, reachable by a path that climbs out of the store.
    dir_.Write("outside/EVIL.prg", "! evil\nT1 X10 Y10\nM30\n");
    Process p;
    Start(p);
    ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
    auto files = SlotFiles(1);
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "../outside", "EVIL").Warning, "Invalid Directory Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Dorvenis", "../../outside/EVIL").Warning, "Invalid Program Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, dir_.Path() + "outside", "EVIL").Warning,
              "Invalid Directory Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLA\tTE01").Warning, "Invalid Program Name !");
    EXPECT_EQ(SelectProgram(p, platform_, nullptr, ".", "PLATE01").Warning, "Invalid Directory Name !");
    // Nothing written beside the program outside, and the slot as it was.
    EXPECT_FALSE(FileExists("outside/EVIL.stg"));
    EXPECT_FALSE(FileExists("outside/EVIL.pls"));
    EXPECT_EQ(p.Slots[0].ProgramName, "PLATE01");
    EXPECT_EQ(SlotFiles(1), files);
}

TEST_F(SelectionTest, NamesAreFoundIgnoringCase) {
    Process p;
    Start(p);
    SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "dorvenis", "plate01");
    ASSERT_TRUE(outcome.Selected) << outcome.Warning;
    EXPECT_EQ(p.Slots[0].ProgramName, "PLATE01");
}

TEST_F(SelectionTest, ProgramWithErrorsEmptiesTheSlot) {
    Process p;
    Start(p);
    ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
    SelectOutcome refused = SelectProgram(p, platform_, nullptr, "Dorvenis", "ERRORS04");
    EXPECT_FALSE(refused.Selected);
    EXPECT_EQ(refused.Warning, "ERRORS04\n\nCan Not Be Selected Due To Errors in Code !");
    EXPECT_FALSE(p.Slots[0].Present);
    EXPECT_TRUE(SlotFiles(1).empty());
    EXPECT_EQ(ProgramButtonCaption(1, p.Slots[0]), "PROGRAM 1   F10");
    EXPECT_NE(std::find(ReadLines("Service/Reverse.txt")->begin(), ReadLines("Service/Reverse.txt")->end(),
                        "****** CRITICAL ERROR ******"),
              ReadLines("Service/Reverse.txt")->end());
}

TEST_F(SelectionTest, ProgramsThatLoopForEverAreRefused) {
    Process p;
    Start(p);
    std::string gotos = "N2";
    for (int k = 0; k < 1000; ++k) gotos += " GOTO 2";
    dir_.Write("Programs/Dorvenis/LOOP1.prg", "N1 G90 T1\nN2 G00 X10 Y10\nN3 GOTO 2\n");
    dir_.Write("Programs/Dorvenis/LOOP2.prg", "N1 G90 T1\n" + gotos + "\n");
    for (const char* name : {"LOOP1", "LOOP2"}) {
        SelectOutcome refused = SelectProgram(p, platform_, nullptr, "Dorvenis", name);
        EXPECT_FALSE(refused.Selected) << name;
        EXPECT_EQ(refused.Warning, std::string(name) + "\n\nCan Not Be Selected Due To Errors in Code !");
        EXPECT_FALSE(p.Slots[0].Present);
        auto report = ReadLines("Service/Reverse.txt");
        ASSERT_TRUE(report);
        auto critical = std::find(report->begin(), report->end(), "****** CRITICAL ERROR ******");
        ASSERT_NE(critical, report->end()) << name;
        EXPECT_EQ(*(critical + 1), "Program does not end: block limit reached") << name;
    }
}

TEST_F(SelectionTest, SlotsSurviveARestart) {
    {
        Process p;
        Start(p);
        ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
        p.Config.ActiveSlot = 2;
        ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "COVER02").Selected);
        ASSERT_TRUE(WriteControlConfig(p.Config));
    }
    Process again;
    Start(again);
    EXPECT_EQ(again.Config.ActiveSlot, 2);
    EXPECT_TRUE(again.Slots[0].Present);
    EXPECT_EQ(again.Slots[0].ProgramName, "PLATE01");
    EXPECT_TRUE(again.Slots[1].Present);
    EXPECT_EQ(again.Slots[1].ProgramName, "COVER02");
    EXPECT_FLOAT_EQ(again.Slots[1].SheetX, 800);
    EXPECT_GT(again.Slots[1].Counts[0].MapWordCount, 0);
}

TEST_F(SelectionTest, IncompleteSlotFilesAreEmptiedAtStart) {
    {
        Process p;
        Start(p);
        ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
    }
    std::filesystem::remove("Actvprg1.RA1");
    Process again;
    Start(again);
    EXPECT_FALSE(again.Slots[0].Present);
    EXPECT_TRUE(SlotFiles(1).empty());
}

TEST_F(SelectionTest, EndToEndWithTheSimulatedCard) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    CardAt(sim.Port());
    PmacEthernetLink link(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    sim.SetVariable("Q10", 0);
    sim.SetVariable("Q11", 1250);  // the card's own load position replaces Machine.dat's
    Process p;
    Start(p, &link);
    sim.ClearReceived();
    sim.SetVariable("M869", 77);
    ASSERT_TRUE(SelectProgram(p, platform_, &link, "Dorvenis", "PLATE01").Selected);
    // What the card holds: both motion programs, the slot and its blocks.
    auto m1 = ReadLines("Actvprg1.M1");
    ASSERT_TRUE(m1);
    EXPECT_FALSE(sim.Program(1).empty());
    EXPECT_EQ(sim.Variable("M811"), 1);
    EXPECT_EQ(sim.Variable("Q11"), 1250);
    EXPECT_EQ(sim.Variable("M869"), 0);
    EXPECT_EQ(sim.Variable("M867"), p.Slots[0].ActiveStation);
    const Station& station = SlotTable(p.Tools, 1)[p.Slots[0].ActiveStation - 1];
    EXPECT_EQ(sim.Variable("Q49"), std::abs(station.TNumber));
    EXPECT_EQ(sim.Variable("Q19"), station.Settings.FeedPercent);
    // In order: the hit counter, the downloads, the slot, the station, the profiler, the batch.
    std::vector<std::string> got = sim.Received();
    auto at = [&](const std::string& prefix) {
        return std::find_if(got.begin(), got.end(), [&](const std::string& c) { return c.starts_with(prefix); }) -
               got.begin();
    };
    EXPECT_LT(at("M869=0"), at("OPEN PROG 1"));
    EXPECT_LT(at("OPEN PROG 1"), at("OPEN PROG 3"));
    EXPECT_LT(at("OPEN PROG 3"), at("M811=1"));
    EXPECT_LT(at("M811=1"), at("Q11="));
    EXPECT_LT(at("Q11="), at("M867="));
    EXPECT_LT(at("M867="), at("Q49="));
    EXPECT_LT(at("Q49="), at("%"));
    EXPECT_LT(at("%"), at("M848="));
    EXPECT_LT(at("M848="), at("P101="));
    EXPECT_LT(at("P110="), at("M863="));
    EXPECT_LT(at("M863="), static_cast<long>(got.size()));

    // Slot 2, then a restart: both slots come back and go to the card again.
    p.Config.ActiveSlot = 2;
    ASSERT_TRUE(SelectProgram(p, platform_, &link, "Dorvenis", "COVER02").Selected);
    EXPECT_FALSE(sim.Program(2).empty());
    ASSERT_TRUE(WriteControlConfig(p.Config));
    link.SetEnabled(false);  // the first process has ended
    sim.ClearReceived();
    PmacEthernetLink again(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    Process restarted;
    Start(restarted, &again);
    got = sim.Received();
    EXPECT_NE(at("OPEN PROG 1"), static_cast<long>(got.size()));
    EXPECT_NE(at("OPEN PROG 4"), static_cast<long>(got.size()));
    EXPECT_EQ(sim.Variable("M811"), 2);
}

TEST_F(SelectionTest, NamesWithBlanksAndEmptyPrograms) {
    std::filesystem::copy_file("Programs/Dorvenis/PLATE01.prg", "Programs/Dorvenis/MY PART 2.prg");
    dir_.Write("Programs/Dorvenis/EMPTY.prg", "");
    dir_.Write("Programs/Dorvenis/BLANKS.prg", "\n   \n\t\n");
    Process p;
    Start(p);
    SelectOutcome spaced = SelectProgram(p, platform_, nullptr, " Dorvenis ", " MY PART 2 ");
    ASSERT_TRUE(spaced.Selected) << spaced.Warning;
    EXPECT_EQ(p.Slots[0].ProgramName, "MY PART 2");
    // An empty program (or one of blank lines) selects as a sheet without motion.
    for (const char* name : {"EMPTY", "BLANKS"}) {
        SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "Dorvenis", name);
        ASSERT_TRUE(outcome.Selected) << name << ": " << outcome.Warning;
        EXPECT_TRUE(p.Slots[0].Present);
        EXPECT_EQ(p.Slots[0].DrawingRecords, 1);
        EXPECT_EQ(p.Slots[0].Counts[0].MapWordCount, 0);
        EXPECT_EQ(p.Slots[0].Counts[0].SourceRecordCount, 0);
        EXPECT_EQ(p.Slots[0].SourceDialect, 0);
    }
}

TEST_F(SelectionTest, AnyMissingFileOfTheSetEmptiesTheSlotAtStart) {
    for (const char* missing : {"cfg", "drw", "M1", "RA1"}) {
        {
            Process p;
            Start(p);
            ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
        }
        std::filesystem::remove(std::string("Actvprg1.") + missing);
        Process again;
        Start(again);
        EXPECT_FALSE(again.Slots[0].Present) << missing;
        EXPECT_TRUE(SlotFiles(1).empty()) << missing;
    }
}

TEST_F(SelectionTest, ShortDescriptionFileEmptiesTheSlotAtStart) {
    {
        Process p;
        Start(p);
        ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
    }
    dir_.Write("Actvprg1.cfg", "PLATE01\nDorvenis\n");
    Process again;
    Start(again);
    EXPECT_FALSE(again.Slots[0].Present);
    EXPECT_TRUE(SlotFiles(1).empty());
}

TEST_F(SelectionTest, AmadaProgramHasBracketMarksUntilARestart) {
    // The AMADA demo in the place of the demo.
    std::filesystem::current_path(std::filesystem::temp_directory_path());
    std::filesystem::remove_all(dir_.Path());
    std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo-amada", dir_.Path(),
                          std::filesystem::copy_options::recursive);
    std::filesystem::current_path(dir_.Path());
    {
        Process p;
        Start(p);
        ASSERT_TRUE(p.Config.Machine.AmadaMachine);
        SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "Dorvenis", "BRKT01");
        ASSERT_TRUE(outcome.Selected) << outcome.Warning;
        EXPECT_EQ(p.Slots[0].SourceDialect, 5);
        EXPECT_EQ(p.Slots[0].CommentOpen, "(");
        EXPECT_EQ(p.Slots[0].CommentClose, ")");
    }
    Process again;
    Start(again);
    ASSERT_TRUE(again.Slots[0].Present);
    EXPECT_EQ(again.Slots[0].SourceDialect, 5);
    EXPECT_EQ(again.Slots[0].CommentOpen, "!");
    EXPECT_EQ(again.Slots[0].CommentClose, "");
}

TEST_F(SelectionTest, EveryFileTheSelectionWritesIsChecked) {
    // A directory with something in it stands where one file of the selection goes: the
    // selection is refused naming that file, and the slot is left empty as after a failed pass.
    const std::vector<std::string> files = {
        "Temp.org",     "Actvprg1.org",      "Actvprg1.pls", "Actvprg1.A1",
        "Actvprg1.A2",  "Actvprg1.sbs",      "Actvprg1.M1",  "Actvprg1.M2",
        "Blend.tmp",    "Service/Blend.txt", "Actvprg1.drw", "Service/Reverse.txt",
        "Actvprg1.dr1", "Actvprg1.W1",       "Actvprg1.RA1", "Actvprg1.RM1",
        "Actvprg1.W2",  "Actvprg1.RA2",      "Actvprg1.RM2", "Actvprg1.cfg",
        "Actvprg1.trt", "Actvprg1.sts",      "Actvprg1.btc", "Programs/Dorvenis/PLATE01.stg"};
    const std::string stg = ReadFileText("Programs/Dorvenis/PLATE01.stg");
    for (const std::string& file : files) {
        Process p;
        Start(p);
        std::filesystem::remove(file);
        dir_.Write(file + "/inside", "in the way");
        SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01");
        EXPECT_FALSE(outcome.Selected) << file;
        EXPECT_NE(outcome.Warning.find("File Fault : "), std::string::npos) << file << ": " << outcome.Warning;
        EXPECT_NE(outcome.Warning.find(file), std::string::npos) << file << ": " << outcome.Warning;
        EXPECT_FALSE(p.Slots[0].Present) << file;
        EXPECT_TRUE(SlotFiles(1).empty()) << file;
        EXPECT_FALSE(FileExists("Blend.tmp")) << file;
        std::filesystem::remove_all(file);
    }
    dir_.Write("Programs/Dorvenis/PLATE01.stg", stg);
    Process p;
    Start(p);
    EXPECT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01").Selected);
}

TEST_F(SelectionTest, AFullDiskRefusesTheSelection) {
    // In a child process whose files may not grow beyond a few bytes, as on a full disk, at
    // several places of the selection.
    for (rlim_t bytes : {rlim_t{0}, rlim_t{100}, rlim_t{1000}, rlim_t{4000}}) {
        Process p;
        Start(p);
        EXPECT_EXIT(
            {
                LimitFileSize(bytes);
                SelectOutcome outcome = SelectProgram(p, platform_, nullptr, "Dorvenis", "PLATE01");
                bool refused = !outcome.Selected && outcome.Warning.find("File Fault : ") != std::string::npos;
                std::_Exit(refused && !p.Slots[0].Present && SlotFiles(1).empty() ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << bytes;
    }
}

TEST_F(SelectionTest, AnUnreadableDescriptionAtStartKeepsTheSlotFiles) {
    {
        Process p;
        Start(p);
        p.Config.ActiveSlot = 2;
        ASSERT_TRUE(SelectProgram(p, platform_, nullptr, "Dorvenis", "COVER02").Selected);
    }
    const std::vector<std::string> files = SlotFiles(2);
    const std::string cfg = ReadFileText("Actvprg2.cfg");
    // A read of the file fails with an I/O error, as a failing disk does.
    std::filesystem::remove("Actvprg2.cfg");
    std::filesystem::create_symlink("/proc/self/mem", "Actvprg2.cfg");
    platform_.Warnings.clear();
    {
        Process again;
        Start(again);
        EXPECT_FALSE(again.Slots[1].Present);
        EXPECT_EQ(SlotFiles(2), files);
        ASSERT_EQ(platform_.Warnings.size(), 1u);
        EXPECT_NE(platform_.Warnings[0].find("Actvprg2.cfg Can Not Be Read !"), std::string::npos)
            << platform_.Warnings[0];
    }
    // A file of the set that is no file at all is kept too.
    std::filesystem::remove("Actvprg2.cfg");
    dir_.Write("Actvprg2.cfg", cfg);
    const std::string drw = ReadFileText("Actvprg2.drw");
    std::filesystem::remove("Actvprg2.drw");
    dir_.Write("Actvprg2.drw/inside", "in the way");
    {
        Process again;
        Start(again);
        EXPECT_FALSE(again.Slots[1].Present);
        EXPECT_TRUE(FileExists("Actvprg2.cfg"));
    }
    // Once the disk reads again, the slot is there as it was.
    std::filesystem::remove_all("Actvprg2.drw");
    dir_.Write("Actvprg2.drw", drw);
    Process later;
    Start(later);
    EXPECT_TRUE(later.Slots[1].Present);
    EXPECT_EQ(later.Slots[1].ProgramName, "COVER02");
}

TEST_F(SelectionTest, ErrorAnswerToADownloadLineIsACardFault) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    CardAt(sim.Port());
    PmacEthernetLink link(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    Process p;
    StartWithCard(p, link);
    // PLATE01 punches at X100: the card refuses that line of its program.
    sim.Reject("X100");
    SelectOutcome outcome = SelectProgram(p, platform_, &link, "Dorvenis", "PLATE01");
    EXPECT_TRUE(outcome.Selected);
    ASSERT_TRUE(outcome.Fault);
    EXPECT_EQ(outcome.Fault->Number, 3);
    EXPECT_TRUE(outcome.Fault->Description.starts_with("ERR003 in line ")) << outcome.Fault->Description;
    EXPECT_TRUE(outcome.Fault->Description.ends_with(" of DownPrg.tmp")) << outcome.Fault->Description;
    // The operator was asked through the card fault path.
    ASSERT_EQ(platform_.Questions.size(), 1u);
    EXPECT_TRUE(
        platform_.Questions[0].starts_with("An error occurred while talking to PMAC !\n\nError Number :  3\nERR003"));
    EXPECT_TRUE(platform_.Questions[0].ends_with("\n\nShutdown Kirvana ?"));
    // A card that takes the program again selects without a fault.
    sim.Reject("");
    outcome = SelectProgram(p, platform_, &link, "Dorvenis", "PLATE01");
    EXPECT_TRUE(outcome.Selected);
    EXPECT_FALSE(outcome.Fault);
}

TEST_F(SelectionTest, DroppedConnectionIsACardFault) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    CardAt(sim.Port());
    PmacEthernetLink link(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    Process p;
    StartWithCard(p, link);
    sim.DropNextDownload();
    SelectOutcome outcome = SelectProgram(p, platform_, &link, "Dorvenis", "PLATE01");
    ASSERT_TRUE(outcome.Fault);
    EXPECT_EQ(outcome.Fault->Number, LinkFaultClosed);
    EXPECT_EQ(platform_.Questions.size(), 1u);
}

TEST_F(SelectionTest, SlowCardEndsTheSelectionByItsDeadline) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    CardAt(sim.Port(), 1500);
    PmacEthernetLink link(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    Process p;
    StartWithCard(p, link);
    EXPECT_EQ(p.Config.Card.OperationDeadlineMs, 1500);
    // Every answer comes within the time-out, but the selection's thirty-odd exchanges would
    // take some 10 s.
    sim.HoldEveryAnswer(300);
    auto start = std::chrono::steady_clock::now();
    SelectOutcome outcome = SelectProgram(p, platform_, &link, "Dorvenis", "PLATE01");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500 + 2000));
    ASSERT_TRUE(outcome.Fault);
    EXPECT_EQ(outcome.Fault->Number, LinkFaultDeadline);
    EXPECT_EQ(platform_.Questions.size(), 1u);
    sim.HoldEveryAnswer(0);
}
