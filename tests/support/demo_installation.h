// A copy of the demo installation in a fresh directory, the current directory of the process
// for the life of the object (the start-up reads Control.cfg from there).
#pragma once

#include <filesystem>
#include <string>

#include "tests/core/temp_dir.h"

namespace kirvana {

class DemoInstallation : public TempDir {
public:
    DemoInstallation() : old_(std::filesystem::current_path()) {
        std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", Path(),
                              std::filesystem::copy_options::recursive);
        std::filesystem::current_path(Path());
    }
    ~DemoInstallation() {
        std::error_code error;
        std::filesystem::current_path(old_, error);
    }

private:
    std::filesystem::path old_;
};

}  // namespace kirvana
