#include "plot/colour_config.h"

#include <vector>

#include "core/config.h"
#include "core/file_writer.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

namespace {

struct ColourDefault {
    const char* Label;
    std::int32_t Value;
};

constexpr std::array<ColourDefault, ColourCount> Defaults{{
    {"Plot Background", 4194304},
    {"Punching Zones", 49152},
    {"Clamps", 4144959},
    {"Reposition Pads", 65535},
    {"Sheet Boundry", 4144959},
    {"Sheet Fill", 8421504},
    {"Datum Marker", 4144959},
    {"Block Skip 1", 16777215},
    {"Block Skip 2", 16777215},
    {"Background Punching", 16777215},
    {"Background Profiling G40", 16776960},
    {"Background Profiling G41", 65280},
    {"Background Profiling G42", 16711935},
    {"Punch Mode Movement Icon", 255},
    {"Punch Mode Real Time Punching", 4194304},
    {"Punch Mode Real Time Movement", 0},
    {"Profile Mode Movement Icon", 255},
    {"Profile Mode Real Time Profiling", 65535},
    {"Profile Mode Real Time Movement", 0},
    {"Highlighted Drawing", 255},
    {"Plot Cursor", 255},
    {"Header Background", 13090456},
    {"Header Text", 0},
    {"Panel Background", 13090456},
    {"Panel Text", 0},
    {"Bold Panel Text", 255},
    {"General Buttons", 12615680},
    {"General Button Text", 0},
    {"Reference Buttons", 49152},
    {"Reference Button Text", 0},
    {"Ok Message Button", 49152},
    {"Ok Message Button Text", 0},
    {"Warning Message Button", 65535},
    {"Warning Message Button Text", 0},
    {"Critical Message Button", 255},
    {"Critical Message Button Text", 0},
    {"Main Keys", 16776960},
    {"Main Key Text", 0},
    {"Sub Keys", 16758820},
    {"Sub Key Text", 0},
    {"Text Background", 4194304},
    {"Text", 65535},
    {"XY Background", 4194304},
    {"XY Headers", 49152},
    {"XY Position", 65535},
    {"Status Background", 4194304},
    {"Status Position Text", 49152},
    {"Status Feed Text", 65535},
}};

// The second comma field of a line as a colour: a whole number from 0 to 0xFFFFFF.
bool ReadColour(const std::string& line, std::int32_t& value) {
    std::size_t comma = line.find(',');
    if (comma == std::string::npos) return false;
    std::string field(Trim(std::string_view(line).substr(comma + 1)));
    if (field.empty() || field.find_first_not_of("0123456789") != std::string::npos || field.size() > 8) return false;
    long number = std::stol(field);
    if (number > 0xFFFFFF) return false;
    value = static_cast<std::int32_t>(number);
    return true;
}

// The file with the defaults, written whole or not at all.
bool WriteDefaults(const std::string& path) {
    std::vector<std::string> lines;
    for (const ColourDefault& d : Defaults) lines.push_back(std::string(d.Label) + ", " + std::to_string(d.Value));
    lines.push_back(EndMarker);
    return WriteLines(path, lines);
}

}  // namespace

const char* ColourLabel(ColourItem item) { return Defaults[static_cast<int>(item)].Label; }

ColourTable DefaultColours() {
    ColourTable table;
    for (int i = 0; i < ColourCount; ++i) table.Values[i] = Defaults[i].Value;
    return table;
}

ColourConfig ReadColourConfig(const std::string& dir) {
    ColourConfig config{DefaultColours(), {}};
    std::string path = dir + "Colour.cfg";
    if (!FileExists(path)) {
        if (!WriteDefaults(path)) config.Note = "Colour.cfg cannot be written: default colours in use";
        return config;
    }
    auto lines = ReadLines(path);
    if (!lines) {
        config.Note = "Colour.cfg cannot be read: default colours in use";
        return config;
    }
    int bad = 0;
    for (int i = 0; i < ColourCount; ++i) {
        std::int32_t value = 0;
        if (static_cast<std::size_t>(i) < lines->size() && (*lines)[i] != EndMarker && ReadColour((*lines)[i], value))
            config.Colours.Values[i] = value;
        else
            ++bad;
    }
    if (bad > 0)
        config.Note = "Colour.cfg: " + std::to_string(bad) + " of " + std::to_string(ColourCount) +
                      " colours unreadable, their defaults in use";
    return config;
}

}  // namespace kirvana
