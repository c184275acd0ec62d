#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "controller/cardsim/card_simulator.h"
#include "controller/conversation.h"
#include "controller/download.h"
#include "controller/pmac_ethernet_link.h"
#include "controller/pmac_protocol.h"
#include "core/paths.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

TEST(PmacProtocol, HeaderLayoutOfEachRequest) {
    pmac::Header h;
    h.Request = pmac::VrPmacGetResponse;
    h.Length = 3;
    std::string packet = pmac::EncodePacket(h, "P10");
    EXPECT_EQ(packet, std::string("\x40\xBF\x00\x00\x00\x00\x00\x03P10", 11));
    h.Request = pmac::VrPmacFlush;
    h.Length = 0;
    EXPECT_EQ(pmac::EncodePacket(h, ""), std::string("\x40\xB3\x00\x00\x00\x00\x00\x00", 8));
    h.Request = pmac::VrPmacWriteBuffer;
    h.Length = 0x0123;
    std::string write = pmac::EncodePacket(h, std::string(0x123, 'A'));
    EXPECT_EQ(write.substr(0, 8), std::string("\x40\xC6\x00\x00\x00\x00\x01\x23", 8));
    EXPECT_EQ(write.size(), 8u + 0x123);
    auto decoded = pmac::DecodeHeader(reinterpret_cast<const std::uint8_t*>(write.data()));
    EXPECT_EQ(decoded.RequestType, pmac::VrDownload);
    EXPECT_EQ(decoded.Request, pmac::VrPmacWriteBuffer);
    EXPECT_EQ(decoded.Length, 0x123);
}

TEST(PmacProtocol, AnswerParsing) {
    auto a = pmac::ParseAnswer("12\r34");
    EXPECT_EQ(a.Status, pmac::Answer::State::Incomplete);
    a = pmac::ParseAnswer("12\r34\r\x06");
    EXPECT_EQ(a.Status, pmac::Answer::State::Done);
    EXPECT_EQ(a.Text, "12\r34");
    a = pmac::ParseAnswer("\x06");
    EXPECT_EQ(a.Status, pmac::Answer::State::Done);
    EXPECT_EQ(a.Text, "");
    a = pmac::ParseAnswer("\x07" "ERR003\r");
    EXPECT_EQ(a.Status, pmac::Answer::State::Error);
    EXPECT_EQ(a.ErrorNumber, 3);
    EXPECT_EQ(a.Text, "ERR003");
    EXPECT_EQ(pmac::ParseAnswer("\x07" "ERR0").Status, pmac::Answer::State::Incomplete);
    EXPECT_EQ(pmac::ParseAnswer(std::string(pmac::MaxAnswer + 1, 'x')).Status, pmac::Answer::State::TooLong);
}

TEST(PmacProtocol, DownloadBuffersHoldWholeLines) {
    std::vector<std::string> lines(300, "N10X1250.5Y100");  // 15 bytes with LF
    auto buffers = pmac::SplitDownload(lines);
    ASSERT_EQ(buffers.size(), 4u);
    std::size_t total = 0;
    for (const auto& b : buffers) {
        EXPECT_LE(b.size(), pmac::MaxPacketData);
        EXPECT_EQ(b.back(), '\n');
        total += b.size();
    }
    EXPECT_EQ(total, 300u * 15);
    auto status = pmac::EncodeWriteStatus({true, 31, 258});
    auto back = pmac::DecodeWriteStatus(reinterpret_cast<const std::uint8_t*>(status.data()));
    EXPECT_TRUE(back.Error);
    EXPECT_EQ(back.ErrorNumber, 31);
    EXPECT_EQ(back.Line, 258);
}

TEST(PmacProtocol, WriteBufferLineNumberLowByteFirst) {
    // The card's answer to a WRITEBUFFER: line number low byte, high byte, error, 0x80 flag.
    const std::uint8_t line5[4] = {0x05, 0x00, 0x03, 0x80};
    auto status = pmac::DecodeWriteStatus(line5);
    EXPECT_TRUE(status.Error);
    EXPECT_EQ(status.ErrorNumber, 3);
    EXPECT_EQ(status.Line, 5);
    const std::uint8_t line258[4] = {0x02, 0x01, 0x1F, 0x80};
    EXPECT_EQ(pmac::DecodeWriteStatus(line258).Line, 258);
    const std::uint8_t fine[4] = {0x00, 0x00, 0x00, 0x00};
    EXPECT_FALSE(pmac::DecodeWriteStatus(fine).Error);
    EXPECT_EQ(pmac::EncodeWriteStatus({true, 3, 5}), std::string("\x05\x00\x03\x80", 4));
}

TEST(CardAddress, FromPmacCfgLine) {
    EXPECT_EQ(ParseCardAddress("").Host, "127.0.0.1");
    EXPECT_EQ(ParseCardAddress("").Port, 1025);
    auto a = ParseCardAddress("Card address: 192.168.10.5:2025");
    EXPECT_EQ(a.Host, "192.168.10.5");
    EXPECT_EQ(a.Port, 2025);
    a = ParseCardAddress("Card: pmac-panel");
    EXPECT_EQ(a.Host, "pmac-panel");
    EXPECT_EQ(a.Port, 1025);
    EXPECT_EQ(ParseCardAddress("******").Host, "127.0.0.1");
}

namespace {

struct LinkTest : ::testing::Test {
    CardSimulator sim;
    std::vector<std::pair<int, std::string>> faults;
    std::unique_ptr<PmacEthernetLink> link;
    CardState state;
    TempDir dir;

    void SetUp() override {
        ASSERT_TRUE(sim.Start());
        link = std::make_unique<PmacEthernetLink>(CardAddress{"127.0.0.1", sim.Port()}, 300);
        link->SetFaultHandler([this](std::int32_t n, const std::string& d) { faults.emplace_back(n, d); });
        link->SetEnabled(true);
        state.CardInUse = true;
    }
    Conversation Talk() { return Conversation(link.get(), state, dir.Path()); }
};

}  // namespace

TEST_F(LinkTest, QueriesOfEveryKindInTheVariableTable) {
    ASSERT_TRUE(link->Enabled());
    Conversation talk = Talk();
    sim.SetVariable("P1022", 16384 + 512);
    sim.SetVariable("Q10", 12.5);
    sim.SetVariable("M869", 42);
    sim.SetMotor(1, 1250.25, 0.003);
    sim.SetAxisDefinition(2, "2000Y");
    sim.SetProgramCounter(1, 57);
    EXPECT_EQ(talk.GetRspnsLng("P1022"), 16896);
    EXPECT_FLOAT_EQ(talk.GetRspnsSngl("Q10", -1), 12.5f);
    EXPECT_EQ(talk.GetRspnsInt("M869"), 42);
    EXPECT_EQ(talk.GetRspnsTxt("#1P"), "1250.25");
    EXPECT_EQ(talk.GetRspnsTxt("#1F"), "0.003");
    EXPECT_EQ(talk.GetRspnsTxt("#2->"), "2000Y");
    EXPECT_EQ(talk.GetRspnsTxt("PC"), "P1:57");
    EXPECT_EQ(talk.GetRspnsInt("%"), 100);
    EXPECT_EQ(talk.GetRspnsInt("I100"), 0);  // 0 until set
    EXPECT_TRUE(faults.empty());
}

TEST_F(LinkTest, AssignmentFormsTheSystemSends) {
    Conversation talk = Talk();
    sim.SetVariable("P1022", 16384 + 512);
    talk.Download("P1021=P1021|1");
    talk.Download("P1021=P1021|1024");
    talk.Download("P1022=P1022-512");
    talk.Download("M811=2 Q11=1.25");
    talk.Download("%80");
    EXPECT_EQ(sim.Variable("P1021"), 1025);
    EXPECT_EQ(sim.Variable("P1022"), 16384);
    EXPECT_EQ(sim.Variable("M811"), 2);
    EXPECT_EQ(sim.Variable("Q11"), 1.25);
    EXPECT_EQ(talk.GetRspnsInt("%"), 80);
    talk.Download("P1021=P1021-1");
    EXPECT_EQ(sim.Variable("P1021"), 1024);
    EXPECT_TRUE(faults.empty());
}

TEST_F(LinkTest, BatchOfPollQueriesInOneRoundTrip) {
    Conversation talk = Talk();
    sim.SetVariable("P1022", 8192);
    sim.SetMotor(2, -10.5, 0);
    auto answers = talk.GetRspnsBatch({"P1022", "P1020", "M830", "#1P", "#2P", "#3P", "#4P", "M869", "PC", "%", "Q17", "M802"});
    ASSERT_EQ(answers.size(), 12u);
    EXPECT_EQ(answers[0], "8192");
    EXPECT_EQ(answers[4], "-10.5");
    EXPECT_EQ(answers[8], "P1:0");
    EXPECT_EQ(answers[9], "100");
}

TEST_F(LinkTest, ErrorAnswerRaisesTheFaultWithItsNumber) {
    Conversation talk = Talk();
    EXPECT_EQ(talk.GetRspnsInt("BOGUS"), 0);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, 3);
    EXPECT_EQ(faults[0].second, "ERR003");
    // The link goes on.
    sim.SetVariable("P5", 7);
    EXPECT_EQ(talk.GetRspnsInt("P5"), 7);
}

TEST_F(LinkTest, LongAnswerSpansSeveralPackets) {
    Conversation talk = Talk();
    std::vector<std::string> queries;
    for (int i = 0; i < 300; ++i) {
        sim.SetVariable("P" + std::to_string(200 + i), 1000000.125 + i);
        queries.push_back("P" + std::to_string(200 + i));
    }
    // 300 answers of 12 bytes: more than two packets.
    auto answers = talk.GetRspnsBatch(std::vector<std::string>(queries.begin(), queries.begin() + 110));
    EXPECT_EQ(answers[109], "1000109.125");
    EXPECT_TRUE(faults.empty());
}

TEST_F(LinkTest, TimeOutRaisesTheFaultAndReadsZero) {
    Conversation talk = Talk();
    sim.SetVariable("P7", 5);
    sim.HoldNextAnswer(600);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(talk.GetRspnsInt("P7"), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(550));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, LinkFaultTimeout);
    // The next exchange connects anew once the card is free again.
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    EXPECT_EQ(talk.GetRspnsInt("P7"), 5);
}

TEST_F(LinkTest, ReconnectsAfterTheCardRestarts) {
    Conversation talk = Talk();
    int port = sim.Port();
    sim.Stop();
    EXPECT_EQ(talk.GetRspnsInt("P1"), 0);
    EXPECT_FALSE(faults.empty());
    faults.clear();
    ASSERT_TRUE(sim.Start(port));
    sim.SetVariable("P1", 9);
    EXPECT_EQ(talk.GetRspnsInt("P1"), 9);
    EXPECT_TRUE(faults.empty());
}

TEST_F(LinkTest, DownloadOfAMotionProgram) {
    Conversation talk = Talk();
    dir.Write("Actvprg1.M1", "N0001 G90 ;start\nN0002\nN0003 X100 Y50 M50Y3\n");
    dir.Write("Actvprg1.M2", "N0001 G92\nN0002\n");
    DownProgram(talk, dir.Path(), dir.Path(), 1);
    EXPECT_TRUE(faults.empty());
    // Every Y word goes from a block with M50, the target's too.
    EXPECT_EQ(sim.Program(1), (std::vector<std::string>{"N0001G90", "N0003X100M50"}));
    EXPECT_EQ(sim.Program(3), (std::vector<std::string>{"N0001G53", "N0002"}));
    // What the card stored is the work file without its frame.
    auto work = ReadLines(dir.Path() + "DownPrg.tmp");
    ASSERT_TRUE(work);
    EXPECT_EQ(std::vector<std::string>(work->begin() + 3, work->end() - 1), sim.Program(3));
}

TEST_F(LinkTest, CompileErrorOfADownloadRaisesTheFault) {
    dir.Write("bad.prm", "OPEN PROG 7\nCLEAR\nX10\nX{20}\nCLOSE\n");
    EXPECT_FALSE(link->DownloadFile(dir.Path() + "bad.prm"));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, 3);
    EXPECT_NE(faults[0].second.find("line 4"), std::string::npos);
}

TEST_F(LinkTest, DownloadErrorNamesTheLineOfTheWorkFile) {
    Conversation talk = Talk();
    // DownPrg.tmp: CLOSE, OPEN PROG 1, CLEAR, then the blocks: the second block is line 5.
    dir.Write("Actvprg1.M1", "N0001 G90\nN0002 X100 Y50\nN0003 X200\n");
    dir.Write("Actvprg1.M2", "");
    sim.Reject("X100");
    DownProgram(talk, dir.Path(), dir.Path(), 1);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, 3);
    EXPECT_EQ(faults[0].second, "ERR003 in line 5 of DownPrg.tmp");
    EXPECT_EQ(link->FaultCount(), 1);
    EXPECT_EQ(link->LastFault().Description, "ERR003 in line 5 of DownPrg.tmp");
}

TEST_F(LinkTest, DroppedConnectionFailsTheDownload) {
    Conversation talk = Talk();
    dir.Write("DownPrg.tmp", "CLOSE\nOPEN PROG 1\nCLEAR\nX1\nCLOSE\n");
    ASSERT_EQ(talk.GetRspnsInt("P1"), 0);  // connected
    sim.DropNextDownload();
    EXPECT_FALSE(link->DownloadFile(dir.Path() + "DownPrg.tmp"));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, LinkFaultClosed);
}

TEST_F(LinkTest, OperationEndsByItsDeadline) {
    Conversation talk = Talk();
    sim.SetVariable("P7", 5);
    sim.HoldEveryAnswer(120);  // each answer within the time-out of 300 ms, but slow
    auto start = std::chrono::steady_clock::now();
    {
        CardOperation operation(link.get(), 400);
        for (int i = 0; i < 20; ++i) talk.GetRspnsInt("P7");
        EXPECT_TRUE(link->OperationExpired());
    }
    // Twenty slow answers would take 2.4 s: the deadline ends the run after some 0.4 s, with
    // one fault, and the exchanges after it fail at once.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].first, LinkFaultDeadline);
    EXPECT_EQ(faults[0].second, "The card did not finish the operation within 400 ms");
    // Outside an operation the slow card answers again.
    EXPECT_FALSE(link->OperationExpired());
    EXPECT_EQ(talk.GetRspnsInt("P7"), 5);
    EXPECT_EQ(faults.size(), 1u);
}

TEST_F(LinkTest, InnerOperationKeepsTheOuterDeadline) {
    Conversation talk = Talk();
    sim.SetVariable("P7", 5);
    CardOperation outer(link.get(), 10000);
    {
        CardOperation inner(link.get(), 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_EQ(talk.GetRspnsInt("P7"), 5);
    }
    EXPECT_EQ(talk.GetRspnsInt("P7"), 5);
    EXPECT_TRUE(faults.empty());
}

TEST_F(LinkTest, SystemFileSetsVariables) {
    dir.Write("axes.prm", "I100=1\nI200=1\n");
    EXPECT_TRUE(link->DownloadFile(dir.Path() + "axes.prm"));
    EXPECT_EQ(sim.Variable("I200"), 1);
}

TEST(PmacLink, NoCardAtTheAddress) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    int port = sim.Port();
    sim.Stop();
    PmacEthernetLink link(CardAddress{"127.0.0.1", port}, 200);
    std::vector<int> faults;
    link.SetFaultHandler([&](std::int32_t n, const std::string&) { faults.push_back(n); });
    link.SetEnabled(true);
    EXPECT_FALSE(link.Enabled());
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0], LinkFaultConnect);
    std::string response = "x";
    EXPECT_FALSE(link.Exchange("P1", response));
    EXPECT_EQ(response, "");
}

namespace {

// A card that misbehaves: it answers every request with the given bytes and then, if asked,
// closes the connection.
class RogueCard {
public:
    RogueCard(std::string answer, bool closeAfter) : answer_(std::move(answer)), close_(closeAfter) {
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(listener_, reinterpret_cast<sockaddr*>(&a), sizeof a);
        listen(listener_, 1);
        socklen_t len = sizeof a;
        getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &len);
        port_ = ntohs(a.sin_port);
        thread_ = std::thread([this] {
            int c = accept(listener_, nullptr, nullptr);
            char buf[4096];
            // The flush at connect gets its byte; then each request gets the rogue answer.
            if (recv(c, buf, sizeof buf, 0) > 0) send(c, "@", 1, MSG_NOSIGNAL);
            if (recv(c, buf, sizeof buf, 0) > 0) {
                for (std::size_t sent = 0; sent < answer_.size();) {
                    ssize_t n = send(c, answer_.data() + sent, answer_.size() - sent, MSG_NOSIGNAL);
                    if (n <= 0) break;
                    sent += static_cast<std::size_t>(n);
                }
            }
            if (!close_) std::this_thread::sleep_for(std::chrono::milliseconds(400));
            close(c);
        });
    }
    ~RogueCard() {
        thread_.join();
        close(listener_);
    }
    int Port() const { return port_; }

private:
    std::string answer_;
    bool close_;
    int listener_;
    int port_;
    std::thread thread_;
};

int ExchangeWithRogue(const std::string& answer, bool closeAfter, std::string& response) {
    RogueCard rogue(answer, closeAfter);
    PmacEthernetLink link(CardAddress{"127.0.0.1", rogue.Port()}, 300);
    int fault = 0;
    link.SetFaultHandler([&](std::int32_t n, const std::string&) { fault = n; });
    link.SetEnabled(true);
    link.Exchange("P1", response);
    return fault;
}

}  // namespace

TEST(PmacLink, GarbageWithoutAnEndTimesOut) {
    std::string response;
    EXPECT_EQ(ExchangeWithRogue("\x01\x02garbage", false, response), LinkFaultTimeout);
    EXPECT_EQ(response, "");
}

TEST(PmacLink, ClosedMidAnswer) {
    std::string response;
    EXPECT_EQ(ExchangeWithRogue("12\r3", true, response), LinkFaultClosed);
    EXPECT_EQ(response, "");
}

TEST(PmacLink, AnswerLongerThanTheBuffer) {
    std::string response;
    EXPECT_EQ(ExchangeWithRogue(std::string(pmac::MaxAnswer + 10, '7'), false, response), LinkFaultTooLong);
    EXPECT_EQ(response, "");
}

TEST(CardSimulatorCommands, TextChannel) {
    CardSimulator sim;
    EXPECT_EQ(sim.Command("set p100 2.5"), "P100=2.5");
    EXPECT_EQ(sim.Command("raise 16384"), "P1022=16384");
    EXPECT_EQ(sim.Command("station 7"), "M802=7");
    EXPECT_EQ(sim.Variable("P1022"), 16384 + 512);
    EXPECT_EQ(sim.Command("hit 3"), "M869=3");
    EXPECT_EQ(sim.Command("hit"), "M869=4");
    EXPECT_EQ(sim.Command("get M869"), "M869=4");
    EXPECT_EQ(sim.Execute("P100 M802"), "2.5\r7\r\x06");
    EXPECT_EQ(sim.Execute("P100=P100*2 P100"), "5\r\x06");
    EXPECT_EQ(sim.Execute("Q1=1+"), "\x07" "ERR003\r");
    EXPECT_EQ(sim.Execute("HELLO"), "\x07" "ERR003\r");
    EXPECT_NE(sim.Command("help").find("commands:"), std::string::npos);
    EXPECT_EQ(sim.Command("reject m50"), "ERR003 to every line holding M50");
    EXPECT_EQ(sim.Execute("M50=1"), "\x07" "ERR003\r");
    EXPECT_TRUE(sim.WriteBuffer("OPEN PROG 1\nCLEAR\nX1\nX2M50\n").Error);
    EXPECT_EQ(sim.WriteBuffer("OPEN PROG 1\nCLEAR\nX1\nX2M50\n").Line, 4);
    EXPECT_EQ(sim.Command("reject"), "nothing rejected");
    EXPECT_EQ(sim.Execute("M50=1"), "\x06");
    EXPECT_EQ(sim.Command("slow 20"), "every answer held 20 ms");
    EXPECT_EQ(sim.Command("drop"), "the next download buffer closes the connection");
}
