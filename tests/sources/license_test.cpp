// SPDX-License-Identifier: Apache-2.0

// Each source says under which license it is, whether or not the file LICENSE is beside it.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "sources/project_files.h"

using testing::Contains;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr const char* source_folders[] = {".ci",       "bench",    "cds_parser", "cmake", "fleet", "include",
                                          "inventory", "platform", "scripts",    "tests", "tools"};

bool is_one_of(const std::string& name, const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The line that a source begins with, behind the one that names its interpreter. Empty for what is no source.
std::string license_line(const std::string& file, const std::string& text) {
    const std::string identifier = "SPDX-License-Identifier: Apache-2.0\n\n";
    const std::string type = std::filesystem::path(file).extension();
    if (is_one_of(type, {".c", ".cpp", ".h"})) {
        return "// " + identifier;
    }
    if (type == ".sql") {
        return "-- " + identifier;
    }
    const bool is_script = text.compare(0, 2, "#!") == 0 || is_one_of(type, {".bash", ".cmake", ".in", ".py", ".sh"}) ||
                           std::filesystem::path(file).filename() == "CMakeLists.txt";
    return is_script ? "# " + identifier : "";
}

// What stands behind the line that names the interpreter, if there is one.
std::string behind_interpreter(const std::string& text) {
    return text.compare(0, 2, "#!") == 0 ? text.substr(text.find('\n') + 1) : text;
}

std::vector<std::string> sources() {
    std::vector<std::string> files = {"CMakeLists.txt"};
    for (const char* folder : source_folders) {
        for (const std::string& file : files_below(folder)) {
            if (!license_line(file, text_of(file)).empty()) {
                files.push_back(file);
            }
        }
    }
    return files;
}

}  // namespace

TEST(Sources, BeginWithTheirLicense) {
    std::vector<std::string> others;
    for (const std::string& file : sources()) {
        const std::string text = text_of(file);
        if (behind_interpreter(text).rfind(license_line(file, text), 0) != 0) {
            others.push_back(file);
        }
    }
    EXPECT_THAT(others, IsEmpty());
}

TEST(Sources, AreOfEveryLanguage) {
    const std::vector<std::string> files = sources();
    for (const char* name : {".c", ".cpp", ".h", ".sh", ".py", ".sql", ".bash", ".cmake", ".in", "/CMakeLists.txt"}) {
        EXPECT_THAT(files, Contains(EndsWith(name)));
    }
    for (const char* folder : source_folders) {
        EXPECT_THAT(files, Contains(StartsWith(folder)));
    }
}
