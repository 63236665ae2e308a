// SPDX-License-Identifier: Apache-2.0

// What the platform's headers promise, each of the project's two platforms keeps. A promise that the recording platform
// forgot would be kept by the workstation's in its place, where no test sees the call.

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "sources/project_files.h"

using testing::ContainsRegex;
using testing::IsSupersetOf;

namespace {

/// The functions that a header declares outside of classes.
std::vector<std::string> functions_declared_in(const std::string& header) {
    static const std::regex declaration(
        "\n(?!//|#|using|struct|class|    |extern)[^\n(;]*\\b(\\w+)\\([^;{]*\\)[^;{]*;");
    const std::string text = text_of(header);
    std::vector<std::string> names;
    for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found) {
        names.push_back((*found)[1]);
    }
    return names;
}

/// XML is read by the workstation platform in tests, too: there is nothing of it to record.
std::vector<std::string> promises() {
    std::vector<std::string> names;
    for (const char* header : {"zeb_db.h", "inventory_service.h", "vonk_log.h"}) {
        const std::vector<std::string> declared = functions_declared_in(std::string("platform/include/") + header);
        names.insert(names.end(), declared.begin(), declared.end());
    }
    return names;
}

}  // namespace

TEST(Promises, AreFoundInEveryHeader) {
    EXPECT_THAT(promises(), IsSupersetOf({"zeb_db_delete", "zeb_db_query", "zeb_db_get_content_values",
                                          "get_dmdb_handle", "zebdb_get_pldm_firmware_pending_list", "logWarn"}));
}

TEST(Promises, AreKeptByTheWorkstation) {
    const std::string exported = text_of("tests/platform/exported_symbols.txt");
    for (const std::string& name : promises()) {
        EXPECT_THAT(exported, ContainsRegex("(^|\n|::)" + name + "(\n|\\()")) << name;
    }
}

TEST(Promises, AreKeptByTheRecordingPlatform) {
    const std::string platform = text_of("tests/support/recording_platform.cpp");
    for (const std::string& name : promises()) {
        EXPECT_THAT(platform, ContainsRegex("\n[a-z_:0-9]+[ *]+" + name + "\\([^;]*\\) \\{")) << name;
    }
}
