// The value commands: eval, word, format.
#include <cstdio>
#include <string>

#include "app/office.h"
#include "core/number.h"
#include "core/words.h"

namespace kirvana::office {

int Eval(const Args& args) {
    if (args.size() != 1) return Usage("eval \"EXPR\"");
    ValueReader reader;
    double value = reader.EvaluateExpression(args[0]);
    std::printf("%s\n", FormatNumber(value, -1).c_str());
    if (reader.ExpressionFault) std::printf("fault\n");
    return 0;
}

int Word(const Args& args) {
    const char* usage = "word \"BLOCK\" LETTER [--number|--integer]";
    if (args.size() < 2 || args.size() > 3 || args[1].size() != 1) return Usage(usage);
    bool number = args.size() == 3 && args[2] == "--number";
    bool integer = args.size() == 3 && args[2] == "--integer";
    if (args.size() == 3 && !number && !integer) return Usage(usage);
    ValueReader reader;
    Number value =
        integer ? Number(reader.WordInteger(args[0], args[1][0]))
                : Number(number ? reader.WordNumber(args[0], args[1][0]) : reader.WordValue(args[0], args[1][0]));
    if (reader.WordMissing)
        std::printf("missing\n");
    else
        std::printf("%s\n", FormatNumber(value, -1).c_str());
    return 0;
}

int Format(const Args& args) {
    const char* usage = "format VALUE DECIMALS [--single]";
    if (args.size() < 2 || args.size() > 3 || (args.size() == 3 && args[2] != "--single")) return Usage(usage);
    double value = ToNumber(args[0]);
    int decimals = static_cast<int>(ToNumber(args[1]));
    Number n = args.size() == 3 ? Number(static_cast<float>(value)) : Number(value);
    std::printf("%s\n", FormatNumber(n, decimals).c_str());
    return 0;
}

}  // namespace kirvana::office
