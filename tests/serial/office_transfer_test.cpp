// kirvana-office send and receive on a copy of the demo installation, over a pseudo-terminal.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "files/receive.h"
#include "tests/core/temp_dir.h"
#include "tests/serial/pty_pair.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

class OfficeTransfer : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(pty.Ready());
        fs::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir.Path() + "demo", fs::copy_options::recursive);
        root = dir.Path() + "demo";
    }
    // The command's exit code, its output in `output`.
    int Run(const std::string& arguments, std::string* output = nullptr) const {
        std::string command = std::string(KIRVANA_OFFICE) + " " + arguments + " 2>&1";
        std::FILE* pipe = popen(command.c_str(), "r");
        if (!pipe) return -1;
        std::string text;
        char buffer[4096];
        while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) text.append(buffer, n);
        int status = pclose(pipe);
        if (output) *output = text;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    PtyPair pty;
    TempDir dir;
    std::string root;
};

TEST_F(OfficeTransfer, SendAProgram) {
    std::string program = ReadFileText(root + "/Programs/Dorvenis/GRID03.prg");
    ASSERT_FALSE(program.empty());
    std::string expected(20, '\0');
    for (std::string_view line : SplitLines(program)) expected += std::string(line) + "\r\n";
    expected += "\x04";
    std::string got;
    std::thread outside([&] { got = pty.ReceiveUntil("\x04", 20); });
    std::string output;
    EXPECT_EQ(Run("send --root " + root + " --dir Dorvenis --program grid03 --port " + pty.Path(), &output), 0)
        << output;
    outside.join();
    EXPECT_EQ(got, expected);
    EXPECT_EQ(output, "sent: GRID03  " + std::to_string(program.size()) + " Characters\n");
}

TEST_F(OfficeTransfer, ReceiveOnce) {
    std::string output;
    std::thread outside([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        pty.Send(std::string(5, '\0') + "\x18NEWDIR\r\n\x19PART7\r\nN10 G90\r\nN20 X1\r\n\x04");
    });
    EXPECT_EQ(Run("receive --root " + root + " --port " + pty.Path() + " --once", &output), 0) << output;
    outside.join();
    EXPECT_NE(output.find("received: PART7 : NEWDIR -> " + root + "/Programs/NEWDIR/PART7.prg"), std::string::npos)
        << output;
    EXPECT_EQ(ReadFileText(root + "/Programs/NEWDIR/PART7.prg"), "N10 G90\nN20 X1\n");
    EXPECT_EQ(ReadFileText(root + "/Messages/Help/Receive.hlp"), "PART7 : NEWDIR\n");
}

TEST_F(OfficeTransfer, ReceiveOnceRefusesANameOutsideTheRoot) {
    std::string output;
    std::thread outside([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        pty.Send("\x18..\r\n\x19PART7\r\nN10\r\n\x04");
    });
    EXPECT_EQ(Run("receive --root " + root + " --port " + pty.Path() + " --once", &output), 1) << output;
    outside.join();
    EXPECT_NE(output.find("refused: Invalid Directory Name ! (kept as " + root + "/Receive1.tmp)"), std::string::npos)
        << output;
    EXPECT_FALSE(fs::exists(dir.Path() + "PART7.prg"));
}

TEST_F(OfficeTransfer, RefusalsAndExitCodes) {
    std::string output;
    EXPECT_EQ(Run("send --root " + root + " --dir Dorvenis", &output), 2);
    EXPECT_EQ(Run("receive", &output), 2);
    EXPECT_EQ(Run("send --root " + root + " --dir .. --program GRID03 --port " + pty.Path(), &output), 1);
    EXPECT_EQ(output, "Invalid Directory Name !\n");
    EXPECT_EQ(Run("send --root " + root + " --dir Dorvenis --program NOSUCH --port " + pty.Path(), &output), 1);
    EXPECT_EQ(output, "Program Does Not Exist !\n");
    // The demo's Control.cms has the transfer off.
    EXPECT_EQ(Run("receive --root " + root + " --once", &output), 1);
    EXPECT_NE(output.find("the RS232 transfer is off"), std::string::npos);
    EXPECT_EQ(Run("receive --root " + root + " --port /dev/ttyNOSUCH --once", &output), 1);
    EXPECT_NE(output.find("cannot open the port: /dev/ttyNOSUCH"), std::string::npos) << output;
    fs::remove(root + "/Data/Control.cms");
    EXPECT_EQ(Run("receive --root " + root + " --port " + pty.Path(), &output), 3);
    EXPECT_NE(output.find("Control.cms: missing or unreadable"), std::string::npos);
    EXPECT_EQ(Run("send --help", &output), 0);
    EXPECT_EQ(output,
              "usage: kirvana-office send --root ROOT --dir DIR --program NAME [--port DEV]   send a program over "
              "the RS232 port\n");
}

}  // namespace
}  // namespace kirvana
