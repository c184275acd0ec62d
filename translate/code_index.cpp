#include "translate/code_index.h"

#include <cstdlib>
#include <iterator>
#include <string_view>

namespace kirvana {

namespace {

constexpr std::size_t npos = std::string_view::npos;

}  // namespace

void CodeIndex::Build(std::string_view block) {
    count_ = 0;
    many_ = false;
    for (std::uint64_t& word : codes_) word = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (block[i] != 'G' && block[i] != 'M') continue;
        for (std::size_t length = 3; length <= 4 && i + length <= block.size(); ++length) {
            int bit = CodeBit(block.substr(i, length));
            if (bit >= 0) codes_[bit / 64] |= std::uint64_t{1} << (bit % 64);
        }
        if (count_ == static_cast<int>(std::size(at_))) {
            many_ = true;
            continue;
        }
        at_[count_++] = static_cast<std::uint32_t>(i);
    }
}

bool CodeIndex::HasOther(std::string_view block, std::string_view word) const {
    if (word.empty() || (word[0] != 'G' && word[0] != 'M')) return block.find(word) != npos;
    // No "G" or "M" in the block at all: no code either.
    bool found = count_ > 0 && Search(block, word);
#ifndef NDEBUG
    Check(block, word, found);
#endif
    return found;
}

bool CodeIndex::Search(std::string_view block, std::string_view word) const {
    if (many_) return block.find(word) != npos;
    for (int k = 0; k < count_; ++k) {
        std::size_t at = at_[k];
        if (at + word.size() > block.size() || block[at] != word[0]) continue;
        std::size_t i = 1;
        while (i < word.size() && block[at + i] == word[i]) ++i;
        if (i == word.size()) return true;
    }
    return false;
}

void CodeIndex::Check(std::string_view block, std::string_view word, bool found) {
    if (found != (block.find(word) != npos)) std::abort();  // the index was not rebuilt after a change
}

}  // namespace kirvana
