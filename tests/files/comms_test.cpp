#include "files/comms.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

// A port whose output goes out a few bytes at each turn of the event queue.
class FakePort : public SerialPort {
public:
    bool Open(const std::string& device, const CommSettings&, std::string& error) override {
        ++Opens;
        if (device == "/dev/missing") {
            error = "No such device: " + device;
            return false;
        }
        Device = device;
        open_ = true;
        return true;
    }
    void Close() override {
        open_ = false;
        ++Closes;
    }
    bool IsOpen() const override { return open_; }
    bool Write(std::string_view bytes) override {
        if (failed_) return false;
        queued_.append(bytes);
        MaxQueued = std::max(MaxQueued, queued_.size());
        return true;
    }
    std::size_t OutBufferCount() override { return queued_.size(); }
    std::string Read() override { return std::exchange(Incoming, {}); }
    LineSignals Signals() override { return Lines; }
    bool Failed() const override { return failed_; }
    std::string ErrorText() const override { return failed_ ? "The device has gone" : ""; }
    // One turn of the line: up to `bytes` go out.
    void Drain(std::size_t bytes) {
        std::size_t n = std::min(bytes, queued_.size());
        Sent += queued_.substr(0, n);
        queued_.erase(0, n);
    }
    void Fail() { failed_ = true; }

    std::string Device, Sent, Incoming;
    LineSignals Lines;
    std::size_t MaxQueued = 0;
    int Opens = 0, Closes = 0;

private:
    bool open_ = false;
    bool failed_ = false;
    std::string queued_;
};

class Sending : public ::testing::Test {
protected:
    void SetUp() override {
        settings.CommPort = 1;
        settings.SendLeader = "<L>";
        settings.LineEnd = "\r\n";
        settings.SendTrailer = "<T>";
        settings.SendDrop = "%";
        settings.StartTrigger = TriggerImmediate;
        fs::create_directories(dir.Path() + "Programs/A");
        dir.Write("Programs/A/P.prg", "N10 G90 %\r\nN20 X10\n\nN30\n");
        places = {dir.Path(), dir.Path(), dir.Path() + "Programs/", "A"};
    }
    CommsModule Module(std::function<void()> turn = {}) {
        if (!turn) turn = [this] { port.Drain(16); };
        return CommsModule(settings, places, port, turn);
    }

    TempDir dir;
    CommSettings settings;
    ReceivePlaces places;
    FakePort port;
};

TEST_F(Sending, LeaderLinesAndTrailer) {
    CommsModule comms = Module();
    ASSERT_TRUE(comms.OpenReceivePort());
    EXPECT_EQ(port.Device, "/dev/ttyS0");
    std::vector<SendProgress> progress;
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P", [&](const SendProgress& p) { progress.push_back(p); }),
              SendResult::Sent);
    EXPECT_EQ(port.Sent, "<L>N10 G90 \r\nN20 X10\r\n\r\nN30\r\n<T>");
    EXPECT_EQ(comms.SendState(), SendIdle);
    // The receive port is open again after the send.
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(port.Opens, 3);
    ASSERT_EQ(progress.size(), 4u);
    EXPECT_EQ(progress.back().Label, "P  24 Characters");
    EXPECT_EQ(progress[0].Value, 11);
    EXPECT_EQ(progress.back().Value, 24);
    EXPECT_EQ(progress.back().Maximum, 24);
}

TEST_F(Sending, TheOutputBufferNeverHoldsMoreThan64) {
    std::string big;
    for (int n = 0; n < 2000; ++n) big += "N" + std::to_string(n) + " X" + std::to_string(n) + "\n";
    dir.Write("Programs/A/BIG.prg", big);
    CommsModule comms = Module();
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "BIG"), SendResult::Sent);
    EXPECT_LE(port.MaxQueued, OutBufferLimit);
    EXPECT_EQ(port.Sent.size(), 3 + big.size() + 2000 + 3);
}

TEST_F(Sending, ProgressAbove30000IsInThousands) {
    SendProgress p = SendProgressOf("BIG", 20000, 45678);
    EXPECT_EQ(p.Label, "BIG  45678 Characters");
    EXPECT_EQ(p.Value, 20);
    EXPECT_EQ(p.Maximum, 45);
    EXPECT_EQ(SendProgressOf("S", 100, 30000).Maximum, 30000);
}

TEST_F(Sending, AutoWaitsForTheStartCharacter) {
    settings.StartTrigger = TriggerStartChar;
    settings.StartChar = '\x11';
    int turns = 0;
    CommsModule comms = Module([&] {
        ++turns;
        if (turns == 3) port.Incoming = "abc";
        if (turns == 6) port.Incoming = "x\x11y";
        port.Drain(16);
    });
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::Sent);
    EXPECT_EQ(turns >= 6, true);
    EXPECT_TRUE(port.Sent.starts_with("<L>N10"));
    // What came while waiting was not received as a program.
    EXPECT_FALSE(fs::exists(dir.Path() + "Receive.tmp"));
}

TEST_F(Sending, AnyCharacterStarts) {
    settings.StartTrigger = TriggerAnyChar;
    int turns = 0;
    CommsModule comms = Module([&] {
        if (++turns == 4) port.Incoming = "?";
        port.Drain(16);
    });
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::Sent);
    EXPECT_GE(turns, 4);
}

TEST_F(Sending, CtsDsrAndLineEventsStart) {
    for (auto [trigger, change] :
         {std::pair{TriggerCts, 0}, std::pair{TriggerDsr, 1}, std::pair{TriggerLineEvent, 2}}) {
        settings.StartTrigger = trigger;
        port = FakePort();
        int turns = 0;
        CommsModule comms = Module([&, change = change] {
            if (++turns == 5) {
                if (change == 0) port.Lines.Cts = true;
                if (change == 1) port.Lines.Dsr = true;
                if (change == 2) port.Lines.Ri = true;
            }
            port.Drain(16);
        });
        comms.OpenReceivePort();
        EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::Sent) << trigger;
        EXPECT_GE(turns, 5) << trigger;
    }
}

TEST_F(Sending, ForceStartsAndAbortStops) {
    settings.StartTrigger = TriggerNone;
    int turns = 0;
    std::function<void()> press;
    CommsModule comms = Module([&] {
        if (++turns == 10) press();
        port.Drain(16);
    });
    press = [&] { comms.Force(); };
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::Sent);
    EXPECT_TRUE(port.Sent.ends_with("<T>"));

    turns = 0;
    port.Sent.clear();
    press = [&] { comms.Abort(); };
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::Aborted);
    EXPECT_EQ(port.Sent, "");
    EXPECT_EQ(comms.SendState(), SendIdle);
    EXPECT_TRUE(port.IsOpen());
}

TEST_F(Sending, AbortInTheMiddleOfTheProgram) {
    std::string big(5000, 'X');
    dir.Write("Programs/A/BIG.prg", big + "\n");
    int turns = 0;
    std::function<void()> abort;
    CommsModule comms = Module([&] {
        if (++turns == 20) abort();
        port.Drain(16);
    });
    abort = [&] { comms.Abort(); };
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "BIG"), SendResult::Aborted);
    EXPECT_LT(port.Sent.size(), 1000u);
    EXPECT_FALSE(port.Sent.ends_with("<T>"));
    EXPECT_TRUE(port.IsOpen());
}

TEST_F(Sending, APortThatDisappearsEndsTheSend) {
    std::string big(5000, 'X');
    dir.Write("Programs/A/BIG.prg", big + "\n");
    int turns = 0;
    CommsModule comms = Module([&] {
        if (++turns == 20) port.Fail();
        port.Drain(16);
    });
    comms.OpenReceivePort();
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "BIG"), SendResult::PortFault);
    EXPECT_EQ(comms.LastError(), "The device has gone");
    EXPECT_EQ(comms.SendState(), SendIdle);
}

TEST_F(Sending, AMissingPortOrProgram) {
    settings.PortDevicePath = "/dev/missing";
    CommsModule comms = Module();
    EXPECT_FALSE(comms.OpenReceivePort());
    EXPECT_EQ(comms.LastError(), "No such device: /dev/missing");
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "P"), SendResult::PortFault);
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/A/", "GONE"), SendResult::FileFault);
}

TEST_F(Sending, ThePortReceivesWhenIdle) {
    settings.SendTrailer = "\x04";
    CommsModule comms = Module();
    comms.OpenReceivePort();
    port.Incoming = std::string(1, DirectoryMark) + "A\r\n" + std::string(1, ProgramMark) + "GOT\r\nN1\r\n\x04";
    comms.PortEvent();
    EXPECT_EQ(ReadFileText(dir.Path() + "Programs/A/GOT.prg"), "N1\n");
    EXPECT_EQ(comms.Receiver().TakeResults().size(), 1u);
}

TEST_F(Sending, NoPortConfiguredOpensNothing) {
    settings.CommPort = 0;
    CommsModule comms = Module();
    EXPECT_TRUE(comms.OpenReceivePort());
    EXPECT_EQ(port.Opens, 0);
}

}  // namespace
}  // namespace kirvana
