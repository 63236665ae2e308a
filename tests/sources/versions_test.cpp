// SPDX-License-Identifier: Apache-2.0

// Of each version that was released, the changelog tells what is in it and abi/ what its interface is.

#include <gmock/gmock.h>

#include <zebdb_cds_parser/version.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "sources/project_files.h"

using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

namespace fs = std::filesystem;

namespace {

/// As the changelog heads them, the newest first.
std::vector<std::string> released_versions() {
    static const std::regex heading("\n## (\\d+\\.\\d+\\.\\d+)\n");
    const std::string text = text_of("CHANGELOG.md");
    std::vector<std::string> versions;
    for (std::sregex_iterator found(text.begin(), text.end(), heading), end; found != end; ++found) {
        versions.push_back((*found)[1]);
    }
    return versions;
}

std::vector<std::string> recorded_versions() {
    std::vector<std::string> versions;
    for (const auto& entry : fs::directory_iterator(fs::path(SOURCE_DIR) / "abi")) {
        if (entry.is_directory()) {
            versions.push_back(entry.path().filename());
        }
    }
    return versions;
}

}  // namespace

TEST(ReleasedVersions, TheNewestIsThatOfTheHeaders) {
    ASSERT_THAT(released_versions(), Not(IsEmpty()));
    EXPECT_EQ(released_versions().front(), ZEBDB_CDS_PARSER_VERSION_STRING);
}

TEST(ReleasedVersions, HaveARecordOfTheirInterface) {
    EXPECT_THAT(recorded_versions(), UnorderedElementsAreArray(released_versions()));
}

TEST(ReleasedVersions, AreRecordedForEachMachine) {
    for (const std::string& version : released_versions()) {
        for (const char* machine : {"x86_64-linux-gnu", "arm-linux-gnueabihf"}) {
            EXPECT_THAT(text_of("abi/" + version + "/libzebdb_cds_parser." + machine + ".abi"),
                        StartsWith("<abi-corpus "))
                << version << ' ' << machine;
        }
    }
}
