// Any bytes as a block: every word reader and the evaluator must end without a fault.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/number.h"
#include "core/text.h"
#include "core/words.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view block(reinterpret_cast<const char*>(data), size);
    kirvana::ProgramParameters parameters;
    for (int i = 0; i <= 100; ++i) parameters.P[i] = i * 1.5 - 20;
    kirvana::ValueReader reader(&parameters);
    double sum = reader.EvaluateExpression(block);
    for (char letter : {'X', 'Y', 'R', 'T', 'P', 'D'}) {
        sum += reader.WordValue(block, letter);
        sum += reader.WordNumber(block, letter);
        sum += reader.WordInteger(block, letter);
    }
    kirvana::FormatNumber(sum, -1);
    kirvana::FormatNumber(kirvana::ToNumber(block), static_cast<int>(size % 9) - 1);
    kirvana::StripBlockNumber(block);
    kirvana::RemoveParameter(block, static_cast<int>(size % 101));
    kirvana::CountBlockWords(block);
    kirvana::TextBetween(block, "(", ")");
    kirvana::CutSection(block, "(", ")");
    return 0;
}
