// Any bytes as a block: every word reader and the evaluator must end without a fault. The same
// bytes as a name: one that the name rule accepts stays inside the folder it is looked up in.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/names.h"
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
    if (kirvana::AcceptableName(block)) {
        auto path = (std::filesystem::path("/store/dir") / std::string(block)).lexically_normal();
        if (path.parent_path() != "/store/dir" || block.size() > kirvana::NameLengthLimit) __builtin_trap();
    }
    return 0;
}
