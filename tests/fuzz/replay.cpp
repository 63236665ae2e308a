// SPDX-License-Identifier: Apache-2.0

// usage: TARGET FILE|FOLDER...
//
// Tries each file once, as a fuzzer would: those in the folders, too. For builds without a fuzzer.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "fuzz/fuzz_target.h"

namespace fs = std::filesystem;

namespace {

int replayed = 0;

void replay(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    require(file.is_open(), "the file can be read");
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    ++replayed;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(fs::absolute(argv[i]))) {
            if (entry.is_regular_file()) {
                replay(entry.path());
            }
        }
    }
    std::cerr << replayed << " inputs were tried\n";
    return replayed == 0 ? 1 : 0;
}
