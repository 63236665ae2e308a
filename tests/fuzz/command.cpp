// SPDX-License-Identifier: Apache-2.0

// Any bytes as a file that the command is given: the first byte chooses what it is to do with it.

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "console/failure.h"
#include "fuzz/fuzz_target.h"
#include "subcommands/run.h"
#include "support/small_server.h"

namespace {

// "input" is the file, "kept.db" a database with an inventory. What does not end by itself, or leaves the folder, is
// not for here.
const std::vector<std::string> commands[] = {
    {"load", "input", "--database", "new.db"},
    {"load", "input", "--database", "kept.db"},
    {"load", "input", "--database", "input"},
    {"dump", "input"},
    {"tree", "input"},
    {"tree", "input", "--format", "json"},
    {"explain", "input", "--all"},
    {"explain", "input", "--format", "json", "--redact"},
    {"diff", "input", "input"},
    {"diff", "kept.db", "input", "--format", "json"},
    {"show", "--database", "input"},
    {"show", "--database", "input", "--format", "json"},
    {"show", "devices", "--database", "input", "--format", "csv"},
    {"export", "input", "--redact"},
};

int status_of(const std::vector<std::string>& command) {
    std::vector<std::string> words = command;
    words.insert(words.begin(), "zebdb-cds");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    try {
        return run(static_cast<int>(arguments.size()), arguments.data());
    } catch (const failure&) {
        return 2;
    }
}

std::string content_of(const char* name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const char* name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
}

/// A folder of the process's own, in which it runs. It goes with the process.
class own_folder {
public:
    own_folder() {
        char name[] = "fuzz-command-XXXXXX";
        require(mkdtemp(name) != nullptr && chdir(name) == 0, "a folder can be made");
        path_ = std::filesystem::current_path();
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        write("input", small_server);
        require(status_of({"load", "input", "--database", "kept.db"}) == 0, "a small server can be loaded");
        kept_ = content_of("kept.db");
    }
    ~own_folder() { std::filesystem::remove_all(path_); }
    own_folder(const own_folder&) = delete;
    own_folder& operator=(const own_folder&) = delete;

    /// With nothing in it of what an earlier input left.
    void prepare(const std::string& input) const {
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            std::filesystem::remove_all(entry);
        }
        write("input", input);
        write("kept.db", kept_);
    }

private:
    std::filesystem::path path_;
    std::string kept_;
};

}  // namespace

// A load touches its marker file through the shell, thousands of times a second.
extern "C" int system(const char*) {
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const own_folder folder;
    if (size == 0) {
        return 0;
    }
    folder.prepare(text_of(data + 1, size - 1));
    const int status = status_of(commands[data[0] % std::size(commands)]);
    require(status >= 0 && status <= 2, "the status is one of three");
    return 0;
}
