// Runs a fuzz target over every file of the given directories (or the files named), so that
// saved inputs and every crash once found stay regression tests. Prints the plain summary line.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        std::filesystem::path p(argv[i]);
        if (std::filesystem::is_directory(p)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(p))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
        } else {
            inputs.push_back(p);
        }
    }
    if (inputs.empty()) {
        std::cerr << "no saved inputs found\n";
        return 1;
    }
    for (const auto& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
    }
    std::cout << inputs.size() << " passed, 0 failed\n";
    return 0;
}
