#include "files/receive.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

const std::string Can(1, DirectoryMark), Em(1, ProgramMark);

class Receiving : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir.Path() + "Programs/Current");
        fs::create_directories(dir.Path() + "Messages/Help");
        settings.SendTrailer = std::string(3, '\x04');
        settings.LineEnd = "\r\n";
        places = {dir.Path(), dir.Path() + "Messages/Help/", dir.Path() + "Programs/", "Current"};
    }
    std::string Program(const std::string& path) const { return ReadFileText(dir.Path() + "Programs/" + path); }
    std::string Help() const { return ReadFileText(dir.Path() + "Messages/Help/Receive.hlp"); }
    std::string Framed(const std::string& directory, const std::string& name, const std::string& body) const {
        return Can + directory + "\r\n" + Em + name + "\r\n" + body + settings.SendTrailer;
    }

    TempDir dir;
    CommSettings settings;
    ReceivePlaces places;
};

TEST_F(Receiving, AFramedProgramFilesItself) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    EXPECT_FALSE(r.HelpPresent());
    fs::create_directories(dir.Path() + "Programs/Dorvenis");
    r.ReceiveChars(Framed("Dorvenis", "PART1", "  N10 G90 \r\n\r\nN20 X10\r\n"));
    // The trailer's characters but its last reach the work file: a line of their own here.
    EXPECT_EQ(Program("Dorvenis/PART1.prg"), "N10 G90\nN20 X10\n\x04\x04\n");
    EXPECT_EQ(Help(), "PART1 : Dorvenis\n");
    EXPECT_TRUE(r.HelpPresent());
    std::vector<ReceivedProgram> results = r.TakeResults();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_TRUE(results[0].Filed);
    EXPECT_EQ(results[0].Name, "PART1");
}

// Edge: a stream with no 24 or 25 is stored whole as "New Program 1.prg" in the current directory.
TEST_F(Receiving, AStreamWithoutMarksIsStoredWholeAsNewProgram1) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    std::string body = "N10 G90\r\n\r\n  N20 X10  \r\n";
    r.ReceiveChars(body + settings.SendTrailer);
    EXPECT_EQ(Program("Current/New Program 1.prg"), body + "\x04\x04");
    EXPECT_EQ(Help(), "New Program 1 : Current\n");
    r.ReceiveChars(body + settings.SendTrailer);
    EXPECT_TRUE(FileExists(dir.Path() + "Programs/Current/New Program 2.prg"));
    EXPECT_EQ(Help(), "New Program 1 : Current\nNew Program 2 : Current\n");
}

// Edge: two programs in one receive event give two files; the rest goes to a new Receive.tmp.
TEST_F(Receiving, TwoProgramsInOneEventGiveTwoFiles) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars(Framed("D", "ONE", "N1\r\n") + Framed("D", "TWO", "N2\r\n") + "N3 partial");
    EXPECT_EQ(Program("D/ONE.prg"), "N1\n\x04\x04\n");
    EXPECT_EQ(Program("D/TWO.prg"), "N2\n\x04\x04\n");
    EXPECT_TRUE(r.ReceiveFileOpen());
    EXPECT_EQ(ReadFileText(r.ReceiveTmpPath()), "N3 partial");
    EXPECT_EQ(r.TakeResults().size(), 2u);
}

// Edge: a directory name that does not exist is created.
TEST_F(Receiving, AnUnknownDirectoryIsCreated) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars(Framed("Brand New", "P", "N1\r\n"));
    EXPECT_TRUE(IsDirectory(dir.Path() + "Programs/Brand New"));
    EXPECT_EQ(Program("Brand New/P.prg"), "N1\n\x04\x04\n");
}

// Edge: a received name that exists overwrites that file without asking.
TEST_F(Receiving, AnExistingProgramIsOverwritten) {
    dir.Write("Programs/Current/P.prg", "old text\n");
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars(Can + "\r\n" + Em + "P\r\nN1 new\r\n" + settings.SendTrailer);
    EXPECT_EQ(Program("Current/P.prg"), "N1 new\n\x04\x04\n");
}

// Edge: with SendTrailer empty the receiver never files anything.
TEST_F(Receiving, WithoutTrailerNothingIsFiled) {
    settings.SendTrailer.clear();
    ProgramReceiver r(settings, places);
    r.Prepare();
    std::string stream = Framed("D", "P", "N1\r\n") + std::string(10, '\0');
    r.ReceiveChars(stream);
    EXPECT_FALSE(fs::exists(dir.Path() + "Programs/D"));
    EXPECT_EQ(ReadFileText(r.ReceiveTmpPath()), stream);
    EXPECT_TRUE(r.TakeResults().empty());
}

// The second end mark's buffer is compared as long as the first buffer, and nothing files on it.
TEST_F(Receiving, TheSecondEndMarkFilesNothing) {
    settings.ReceiveEnd2 = "%";
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars("N1\r\n%");
    EXPECT_TRUE(r.TakeResults().empty());
    EXPECT_TRUE(r.ReceiveFileOpen());
}

// The trailer's buffer is emptied, not shifted, when it stops matching: "\x04\x04" then a
// full trailer files once the three marks come in a row after it was emptied.
TEST_F(Receiving, TheTrailerBufferIsEmptiedOnAMismatch) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars("N1\x04\x04X\x04\x04");
    EXPECT_TRUE(r.TakeResults().empty());
    r.ReceiveChars("\x04");
    EXPECT_EQ(r.TakeResults().size(), 1u);
}

TEST_F(Receiving, TheTrailerMayComeOverSeveralEvents) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    std::string stream = Framed("D", "SPLIT", "N1\r\nN2\r\n");
    for (char c : stream) r.ReceiveChars(std::string(1, c));
    EXPECT_EQ(Program("D/SPLIT.prg"), "N1\nN2\n\x04\x04\n");
}

// Dropping the trailer's character keeps it out of the program and still files on it.
TEST_F(Receiving, ADroppedTrailerStaysOutOfTheProgram) {
    settings.ReceiveDrop = "\x04";
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars(Framed("D", "P", "N1\r\n"));
    EXPECT_EQ(Program("D/P.prg"), "N1\n");
}

// The trailer's buffer is emptied on a mismatch, not shifted: "AAB" is missed in "AAAB".
TEST_F(Receiving, AnOverlappingTrailerIsMissed) {
    settings.SendTrailer = "AAB";
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars("N1\r\nAAAB");
    EXPECT_TRUE(r.TakeResults().empty());
    r.ReceiveChars("AAB");
    EXPECT_EQ(r.TakeResults().size(), 1u);
}

TEST_F(Receiving, DroppedCharactersAreNotKept) {
    settings.ReceiveDrop = std::string("\0", 1) + "%";
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars(std::string(5, '\0') + "%N1\r\n" + settings.SendTrailer);
    EXPECT_EQ(Program("Current/New Program 1.prg"), "N1\r\n\x04\x04");
}

TEST_F(Receiving, AShortStreamFilesNothing) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars("N" + settings.SendTrailer);
    EXPECT_EQ(ReadFileText(r.ReceiveTmpPath()), "N\x04\x04");
    EXPECT_EQ(r.TakeResults().size(), 1u);
    settings.SendTrailer = "\x04";
    ProgramReceiver one(settings, places);
    one.Prepare();
    one.ReceiveChars("N\x04");
    EXPECT_TRUE(one.TakeResults().empty());
}

TEST_F(Receiving, NamesThatLeaveTheRootAreRefusedAndKept) {
    const std::vector<std::pair<std::string, std::string>> cases = {{"..", "P"},
                                                                    {"../../etc", "P"},
                                                                    {"/tmp", "P"},
                                                                    {"D", "../escape"},
                                                                    {"D", "/etc/passwd"},
                                                                    {"D", "a/b"},
                                                                    {"D", std::string(200, 'N')},
                                                                    {"D", std::string("x\0y", 3)},
                                                                    {"D\x01", "P"},
                                                                    {"D", "C:evil"}};
    int n = 0;
    for (const auto& [directory, name] : cases) {
        ProgramReceiver r(settings, places);
        r.Prepare();
        std::string stream = Framed(directory, name, "N1\r\n");
        r.ReceiveChars(stream);
        std::vector<ReceivedProgram> results = r.TakeResults();
        ASSERT_EQ(results.size(), 1u) << directory << " " << name;
        EXPECT_FALSE(results[0].Filed);
        EXPECT_TRUE(results[0].Refusal == "Invalid Directory Name !" || results[0].Refusal == "Invalid Program Name !");
        ++n;
        EXPECT_EQ(results[0].KeptAs, dir.Path() + "Receive" + std::to_string(n) + ".tmp");
        EXPECT_EQ(ReadFileText(results[0].KeptAs), stream.substr(0, stream.size() - 1));
        EXPECT_NE(Help().find("Refused : " + results[0].Refusal + " : Kept As Receive" + std::to_string(n) + ".tmp"),
                  std::string::npos);
    }
    // Nothing was written outside the program root but the kept streams and the list.
    EXPECT_FALSE(fs::exists(dir.Path() + "escape.prg"));
    EXPECT_FALSE(fs::exists(dir.Path() + "Programs/D/escape.prg"));
    EXPECT_EQ(ListDirectory(dir.Path() + "Programs/", true), std::vector<std::string>{"Current"});
}

TEST_F(Receiving, BinaryGarbageIsFiledOrRefusedNeverOutside) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    std::string garbage;
    unsigned state = 12345;
    for (int i = 0; i < 20000; ++i) {
        state = state * 1103515245u + 12345u;
        garbage += static_cast<char>((state >> 16) & 0xFF);
    }
    r.ReceiveChars(garbage + settings.SendTrailer);
    for (const ReceivedProgram& p : r.TakeResults()) {
        if (p.Filed) {
            EXPECT_TRUE(p.Path.starts_with(dir.Path() + "Programs/")) << p.Path;
        }
    }
}

// A stream beyond the limit is not kept on and is refused when it ends.
TEST_F(Receiving, AStreamBeyondTheLimitIsRefused) {
    ProgramReceiver r(settings, places, 5000);
    r.Prepare();
    std::string chunk(1000, 'X');
    for (int n = 0; n < 7; ++n) r.ReceiveChars(chunk);
    EXPECT_EQ(fs::file_size(r.ReceiveTmpPath()), 5000u);
    r.ReceiveChars(settings.SendTrailer);
    std::vector<ReceivedProgram> results = r.TakeResults();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].Refusal, "Program Too Long !");
    EXPECT_FALSE(fs::exists(dir.Path() + "Programs/Current/New Program 1.prg"));
    fs::remove(results[0].KeptAs);
}

TEST_F(Receiving, TheHelpListIsStartedAnewWhenUnderFourBytes) {
    dir.Write("Messages/Help/Receive.hlp", "ab\n");
    ProgramReceiver r(settings, places);
    r.Prepare();
    EXPECT_FALSE(r.HelpPresent());
    r.ReceiveChars(Framed("D", "P", "N1\r\n"));
    EXPECT_EQ(Help(), "P : D\n");
}

TEST_F(Receiving, ShutdownClosesAndDeletesTheWorkFile) {
    ProgramReceiver r(settings, places);
    r.Prepare();
    r.ReceiveChars("never ending");
    EXPECT_TRUE(FileExists(r.ReceiveTmpPath()));
    r.CloseReceiveFile();
    EXPECT_FALSE(r.ReceiveFileOpen());
    EXPECT_FALSE(FileExists(r.ReceiveTmpPath()));
}

TEST_F(Receiving, AFullDiskRefusesTheProgramAndSaysSo) {
    EXPECT_EXIT(
        {
            LimitFileSize(1000);
            ProgramReceiver r(settings, places);
            r.Prepare();
            r.ReceiveChars(Framed("D", "BIG", std::string(3000, 'X') + "\r\n"));
            std::vector<ReceivedProgram> results = r.TakeResults();
            bool refused =
                results.size() == 1 && !results[0].Filed && results[0].Refusal == "File Fault : " + r.ReceiveTmpPath();
            std::_Exit(refused && !fs::exists(dir.Path() + "Programs/D/BIG.prg") ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kirvana
