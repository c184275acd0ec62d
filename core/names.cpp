#include "core/names.h"

namespace kirvana {

bool AcceptableName(std::string_view name) {
    if (name.empty() || name.size() > NameLengthLimit || name == ".") return false;
    if (name.find("..") != std::string_view::npos) return false;
    for (char c : name) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127 || c == '/' || c == '\\' || c == ':') return false;
    }
    return true;
}

}  // namespace kirvana
