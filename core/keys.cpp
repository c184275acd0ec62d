#include "core/keys.h"

#include <cstring>

namespace kirvana {

namespace {

bool IsDigitKey(int k) { return k >= '0' && k <= '9'; }
bool IsLetterKey(int k) { return (k >= 'A' && k <= 'Z') || (k >= 'a' && k <= 'z'); }
bool OneOf(int k, const char* set) { return k > 0 && k < 128 && std::strchr(set, k) != nullptr; }

bool Accepts(int k, int kind, std::string_view text, bool replacing) {
    auto within = [&](std::size_t limit) { return replacing || text.size() < limit; };
    auto blankAllowed = [&] { return k == ' ' && !text.empty(); };
    switch (kind) {
        case -2:
            return IsDigitKey(k) || k == '-';
        case -4:
            return IsDigitKey(k) || k == '.';
        case -5:
            return IsDigitKey(k) || k == '-' || k == '.';
        case -6:
            return IsDigitKey(k) || OneOf(k, "()*+-./");
        case -8:
            return (IsLetterKey(k) || IsDigitKey(k) || OneOf(k, "-_")) && within(8);
        case -32:
            return (IsLetterKey(k) || IsDigitKey(k) || OneOf(k, "!#$%&()+-.=_") || blankAllowed()) && within(32);
        case -321:
            return (IsLetterKey(k) || IsDigitKey(k) || OneOf(k, "!#$%&()+-.=") || blankAllowed()) && within(36);
        case -322:
            return IsLetterKey(k) || IsDigitKey(k) || OneOf(k, "!#$%&()+-.=_*?") || blankAllowed();
        default:
            break;
    }
    if (kind >= 1)
        return (IsLetterKey(k) || IsDigitKey(k) || OneOf(k, "!\"#$%&'()*+,-./:;=[\\]^_`{|}?@") || blankAllowed()) &&
               within(static_cast<std::size_t>(kind));
    return IsDigitKey(k);  // -1, 0 and any other negative kind: digits
}

}  // namespace

int FilterKey(int keyCode, int kind, std::string_view presentText, bool selectionReplaced, Beeper& beeper) {
    if (keyCode == 8 || keyCode == 13) return keyCode;
    if (Accepts(keyCode, kind, presentText, selectionReplaced)) return keyCode;
    beeper.Beep();
    return 0;
}

}  // namespace kirvana
