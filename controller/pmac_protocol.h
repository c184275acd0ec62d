// The Turbo PMAC Ethernet protocol: an 8-byte header (request type, request, value, index,
// big-endian data length) followed by the data. Commands and queries go as GETRESPONSE; the
// card answers with lines ended by CR and the whole ended by ACK, or with BELL "ERRnnn" CR.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kirvana::pmac {

inline constexpr std::uint8_t VrDownload = 0x40;        // host to card
inline constexpr std::uint8_t VrUpload = 0xC0;          // card to host
inline constexpr std::uint8_t VrPmacFlush = 0xB3;
inline constexpr std::uint8_t VrPmacGetResponse = 0xBF;
inline constexpr std::uint8_t VrPmacWriteBuffer = 0xC6;
inline constexpr std::size_t HeaderSize = 8;
// The most data one packet carries.
inline constexpr std::size_t MaxPacketData = 1400;
// The most answer text the link takes before it calls the answer garbage.
inline constexpr std::size_t MaxAnswer = 65536;

inline constexpr char Ack = 0x06;
inline constexpr char Bell = 0x07;
inline constexpr char Cr = 0x0D;

struct Header {
    std::uint8_t RequestType = VrDownload;
    std::uint8_t Request = 0;
    std::uint16_t Value = 0;
    std::uint16_t Index = 0;
    std::uint16_t Length = 0;
};

// The packet of a request: header and data.
std::string EncodePacket(const Header& header, std::string_view data);
// Reads a header from its 8 bytes.
Header DecodeHeader(const std::uint8_t* bytes);

// The answer of a GETRESPONSE as it builds up from the bytes received.
struct Answer {
    enum class State { Incomplete, Done, Error, TooLong } Status = State::Incomplete;
    std::string Text;           // the answer lines, each ended by CR removed, joined by CR
    int ErrorNumber = 0;        // with Error: nnn of "ERRnnn"
};
// Looks at everything received so far for one request.
Answer ParseAnswer(std::string_view received);

// The buffers of a file download: whole lines, each ended by LF, at most MaxPacketData bytes
// each (a longer line goes alone, cut to the packet size).
std::vector<std::string> SplitDownload(const std::vector<std::string>& lines);

// The 4-byte answer to a WRITEBUFFER: byte 3 has 0x80 on an error, byte 2 holds the error
// number and bytes 0 and 1 the number of the line in the buffer, from 1: byte 0 its low
// byte and byte 1 its high byte (little-endian, unlike the header's length).
struct WriteStatus {
    bool Error = false;
    int ErrorNumber = 0;
    int Line = 0;
};
WriteStatus DecodeWriteStatus(const std::uint8_t* bytes);
std::string EncodeWriteStatus(const WriteStatus& status);

}  // namespace kirvana::pmac
