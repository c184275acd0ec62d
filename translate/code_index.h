// Where the "G" and "M" codes stand in a block: the one index the passes search codes with.
#pragma once

#include <cstdint>
#include <string_view>

namespace kirvana {

// A search aid for the codes the passes look for in a block, all of which start with "G" or "M":
// it keeps the positions of those letters in the block and answers from them. Other words are
// searched in the whole block. A pass rebuilds it after every change of the block; debug builds
// check each answer against a plain search.
class CodeIndex {
public:
    void Build(std::string_view block);
    // A code of "G" or "M" and two digits, or "G1" or "M1" and two digits, is one bit:
    // inlined everywhere, and with a constant word the bit is a constant too. Everything else
    // goes to HasOther.
    [[gnu::always_inline]] bool Has(std::string_view block, std::string_view word) const {
        int bit = CodeBit(word);
        if (bit >= 0) {
            bool found = ((codes_[bit / 64] >> (bit % 64)) & 1) != 0;
#ifndef NDEBUG
            Check(block, word, found);
#endif
            return found;
        }
        return HasOther(block, word);
    }

    // No "G" or "M" in the block at all.
    bool Empty() const { return count_ == 0; }

private:
    // Two digits as a number, or -1.
    [[gnu::always_inline]] static int TwoDigits(char tens, char units) {
        if (tens < '0' || tens > '9' || units < '0' || units > '9') return -1;
        return (tens - '0') * 10 + (units - '0');
    }
    // The bit of a code: "G" or "M" and two digits (0 to 199), "G1" or "M1" and two digits
    // (200 to 399); -1 for any other word.
    [[gnu::always_inline]] static int CodeBit(std::string_view word) {
        if (word.size() < 3 || word.size() > 4 || (word[0] != 'G' && word[0] != 'M')) return -1;
        const int letter = word[0] == 'M' ? 100 : 0;
        if (word.size() == 3) {
            int number = TwoDigits(word[1], word[2]);
            return number < 0 ? -1 : letter + number;
        }
        int number = word[1] == '1' ? TwoDigits(word[2], word[3]) : -1;
        return number < 0 ? -1 : 200 + letter + number;
    }
    bool HasOther(std::string_view block, std::string_view word) const;
    bool Search(std::string_view block, std::string_view word) const;
    static void Check(std::string_view block, std::string_view word, bool found);

    std::uint64_t codes_[7] = {};  // the codes of CodeBit present in the block
    std::uint32_t at_[16] = {};
    int count_ = 0;
    bool many_ = false;
};

}  // namespace kirvana
