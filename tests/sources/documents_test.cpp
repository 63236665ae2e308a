// SPDX-License-Identifier: Apache-2.0

// The documents name files and folders of the project. Each of them is there.

#include <gmock/gmock.h>

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "sources/project_files.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

// What is made by building or is a user's own folder.
bool is_elsewhere(const std::string& path) {
    return path.compare(0, 6, "build/") == 0 || path.compare(0, 4, "DIR/") == 0;
}

// A word in capitals stands for any name, as in tools/subcommands/NAME.cpp.
std::string pattern_of(const std::string& path) {
    return std::regex_replace(path, std::regex("[A-Z]{2,}"), "*");
}

bool is_there(const std::string& path) {
    if (fs::exists(fs::path(SOURCE_DIR) / path) || fs::exists(fs::path(SOURCE_DIR) / "include" / path)) {
        return true;
    }
    const std::string pattern = pattern_of(path);
    const fs::path folder = *fs::path(path).begin();
    if (pattern == path || !fs::is_directory(SOURCE_DIR / folder)) {
        return false;
    }
    const std::vector<std::string> files = files_below(folder);
    return std::any_of(files.begin(), files.end(),
                       [&pattern](const std::string& file) { return fnmatch(pattern.c_str(), file.c_str(), 0) == 0; });
}

/// The relative paths, alone or at the begin of a command, that stand between backticks but not in the project.
std::vector<std::string> missing_paths(const std::string& document) {
    static const std::regex path("`([\\w.][\\w.-]*/[\\w./-]*)[` ]");
    std::vector<std::string> missing;
    for (std::sregex_iterator found(document.begin(), document.end(), path), end; found != end; ++found) {
        const std::string named = (*found)[1];
        if (!is_elsewhere(named) && !is_there(named)) {
            missing.push_back(named);
        }
    }
    return missing;
}

std::vector<std::string> documents() {
    std::vector<std::string> all = {"CONTRIBUTING.md", "README.md", "SECURITY.md"};
    for (const std::string& file : files_below("docs")) {
        all.push_back(file);
    }
    return all;
}

}  // namespace

TEST(Documents, NameNoPathThatIsNotThere) {
    for (const std::string& document : documents()) {
        EXPECT_THAT(missing_paths(text_of(document)), IsEmpty()) << document;
    }
}

TEST(PathsInADocument, ThatAreNotThereAreTold) {
    EXPECT_THAT(missing_paths("`docs/missing.md`, `docs/missing`, `scripts/missing now` and `docs/NAME.hpp`"),
                ElementsAre("docs/missing.md", "docs/missing", "scripts/missing", "docs/NAME.hpp"));
}

TEST(PathsInADocument, ThatAreThereAreFine) {
    EXPECT_THAT(missing_paths("`docs/`, `docs/architecture.md`, `scripts/test elsewhere`, `docs/NAME.md` and "
                              "`zebdb_cds_parser/parser.h`"),
                IsEmpty());
}

TEST(PathsInADocument, ThatAreOutsideTheProjectAreNotLookedFor) {
    EXPECT_THAT(missing_paths("`/var/DS`, `DIR/var/DS`, `build/demo/tools` and `$PWD/demo`"), IsEmpty());
}
