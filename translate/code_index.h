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
    // A three-character code is one bit: inlined everywhere, and with a constant word the bit
    // is a constant too. Everything else goes to HasOther.
    [[gnu::always_inline]] bool Has(std::string_view block, std::string_view word) const {
        if (word.size() == 3 && (word[0] == 'G' || word[0] == 'M')) {
            int bit = CodeBit(word[0], word[1], word[2]);
            if (bit >= 0) {
                bool found = ((codes_[bit / 64] >> (bit % 64)) & 1) != 0;
#ifndef NDEBUG
                Check(block, word, found);
#endif
                return found;
            }
        }
        return HasOther(block, word);
    }

    // No "G" or "M" in the block at all.
    bool Empty() const { return count_ == 0; }

private:
    // The bit of a three-character code "G" or "M" and two digits, or -1.
    static int CodeBit(char letter, char tens, char units) {
        if (tens < '0' || tens > '9' || units < '0' || units > '9') return -1;
        return (letter == 'M' ? 100 : 0) + (tens - '0') * 10 + (units - '0');
    }
    bool HasOther(std::string_view block, std::string_view word) const;
    bool Search(std::string_view block, std::string_view word) const;
    static void Check(std::string_view block, std::string_view word, bool found);

    std::uint64_t codes_[4] = {};  // "G00" to "G99" and "M00" to "M99" present in the block
    std::uint32_t at_[16] = {};
    int count_ = 0;
    bool many_ = false;
};

}  // namespace kirvana
