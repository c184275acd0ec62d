// The word tables of the grid, arc and nibbling cycles: each word with its reader, its value
// when missing and its inch conversion.
#include "core/cycle_words.h"

namespace kirvana {

namespace {

double Or(double value, double missing) { return value == MissingWord ? missing : value; }

std::int16_t CountOr0(std::int16_t value) { return value == MissingWord ? std::int16_t{0} : value; }

}  // namespace

// The G26 word table.
GridWords ReadGridWords(const CycleWordReader& words) {
    GridWords g;
    g.I = words.Length("I");
    g.J = words.Length("J");
    g.Grid.P1 = CountOr0(words.Integer("P1="));
    g.Grid.P2 = Or(words.Length("P2="), 0);
    g.Grid.P3 = CountOr0(words.Integer("P3="));
    g.Grid.P4 = Or(words.Length("P4="), 0);
    g.Grid.P5 = Or(words.Value("P5="), 0);
    g.Grid.P7 = Or(words.Length("P7="), 0);
    g.Grid.P8 = Or(words.Length("P8="), 0);
    g.Stay = CountOr0(words.Integer("P9=")) != 0;
    return g;
}

// The G28 word table; "P10=" has no effect and isn't read.
ArcWords ReadArcWords(const CycleWordReader& words) {
    ArcWords a;
    a.R = words.Length("R");
    a.Arc.I = Or(words.Length("I"), 0);
    a.Arc.J = Or(words.Length("J"), 0);
    a.Arc.P1 = CountOr0(words.Integer("P1="));
    a.Arc.P2 = Or(words.Value("P2="), 0);
    a.Arc.P3 = words.Value("P3=");
    a.Arc.P3Given = a.Arc.P3 != MissingWord;
    a.Arc.P4 = words.Value("P4=");
    a.Arc.P4Given = a.Arc.P4 != MissingWord;
    a.Arc.P5 = Or(words.Value("P5="), 0);
    a.P7 = words.Length("P7=");
    a.P8 = words.Length("P8=");
    a.Stay = CountOr0(words.Integer("P9=")) != 0;
    return a;
}

// The G36 word table; "P8=" is read by the nibble increment.
NibbleLineWords ReadNibbleLineWords(const CycleWordReader& words) {
    NibbleLineWords n;
    n.I = words.Length("I");
    n.J = words.Length("J");
    n.P1 = Or(words.Length("P1="), 0);
    n.P5 = Or(words.Value("P5="), 0);
    return n;
}

// The G37 word table; "P8=" is read by the nibble increment.
NibbleArcWords ReadNibbleArcWords(const CycleWordReader& words) {
    NibbleArcWords n;
    n.R = Or(words.Length("R"), 0);
    n.I = Or(words.Length("I"), 0);
    n.J = Or(words.Length("J"), 0);
    n.P1 = Or(words.Value("P1="), 0);
    n.P5 = words.Value("P5=");
    return n;
}

}  // namespace kirvana
