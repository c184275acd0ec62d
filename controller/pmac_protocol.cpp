#include "controller/pmac_protocol.h"

namespace kirvana::pmac {

std::string EncodePacket(const Header& header, std::string_view data) {
    std::string packet(HeaderSize, '\0');
    packet[0] = static_cast<char>(header.RequestType);
    packet[1] = static_cast<char>(header.Request);
    packet[2] = static_cast<char>(header.Value & 0xFF);
    packet[3] = static_cast<char>(header.Value >> 8);
    packet[4] = static_cast<char>(header.Index & 0xFF);
    packet[5] = static_cast<char>(header.Index >> 8);
    packet[6] = static_cast<char>(header.Length >> 8);  // the length goes in network order
    packet[7] = static_cast<char>(header.Length & 0xFF);
    packet.append(data);
    return packet;
}

Header DecodeHeader(const std::uint8_t* bytes) {
    Header h;
    h.RequestType = bytes[0];
    h.Request = bytes[1];
    h.Value = static_cast<std::uint16_t>(bytes[2] | (bytes[3] << 8));
    h.Index = static_cast<std::uint16_t>(bytes[4] | (bytes[5] << 8));
    h.Length = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
    return h;
}

Answer ParseAnswer(std::string_view received) {
    Answer answer;
    std::size_t bell = received.find(Bell);
    std::size_t ack = received.find(Ack);
    if (bell != std::string_view::npos && (ack == std::string_view::npos || bell < ack)) {
        // BELL "ERRnnn" CR: complete once the CR has come.
        std::size_t cr = received.find(Cr, bell);
        if (cr == std::string_view::npos) {
            answer.Status = received.size() > MaxAnswer ? Answer::State::TooLong : Answer::State::Incomplete;
            return answer;
        }
        std::string_view error = received.substr(bell + 1, cr - bell - 1);
        answer.Status = Answer::State::Error;
        for (char c : error)
            if (c >= '0' && c <= '9' && answer.ErrorNumber < 100000) answer.ErrorNumber = answer.ErrorNumber * 10 + (c - '0');
        answer.Text = std::string(error);
        return answer;
    }
    if (ack == std::string_view::npos) {
        answer.Status = received.size() > MaxAnswer ? Answer::State::TooLong : Answer::State::Incomplete;
        return answer;
    }
    // The lines in front of the ACK, each ended by CR; LF that some cards add is dropped.
    std::string_view body = received.substr(0, ack);
    for (char c : body)
        if (c != '\n') answer.Text.push_back(c);
    while (!answer.Text.empty() && answer.Text.back() == Cr) answer.Text.pop_back();
    answer.Status = Answer::State::Done;
    return answer;
}

std::vector<std::string> SplitDownload(const std::vector<std::string>& lines) {
    std::vector<std::string> buffers;
    std::string current;
    for (const std::string& raw : lines) {
        std::string line = raw.substr(0, MaxPacketData - 1) + "\n";
        if (current.size() + line.size() > MaxPacketData) {
            buffers.push_back(std::move(current));
            current.clear();
        }
        current += line;
    }
    if (!current.empty()) buffers.push_back(std::move(current));
    return buffers;
}

WriteStatus DecodeWriteStatus(const std::uint8_t* bytes) {
    WriteStatus s;
    s.Error = (bytes[3] & 0x80) != 0;
    s.ErrorNumber = bytes[2];
    s.Line = bytes[0] | (bytes[1] << 8);
    return s;
}

std::string EncodeWriteStatus(const WriteStatus& status) {
    std::string bytes(4, '\0');
    bytes[0] = static_cast<char>(status.Line & 0xFF);
    bytes[1] = static_cast<char>((status.Line >> 8) & 0xFF);
    bytes[2] = static_cast<char>(status.ErrorNumber & 0xFF);
    bytes[3] = static_cast<char>(status.Error ? 0x80 : 0);
    return bytes;
}

}  // namespace kirvana::pmac
