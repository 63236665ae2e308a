// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "listing/fields_formats.h"
#include "rows/kinds.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

kind_list all_kinds() {
    return {std::begin(kinds::all), std::end(kinds::all)};
}

}  // namespace

// Where this fails: zebdb-cds fields --format markdown >docs/fields.md
TEST(FieldsPage, IsTheOneAmongTheDocuments) {
    std::ifstream page(SOURCE_DIR "/docs/fields.md");
    EXPECT_EQ((std::string{std::istreambuf_iterator<char>(page), {}}), fields_page(all_kinds()));
}

TEST(FieldsText, TellsOfEveryColumnAndOfWhatItsNumbersStandFor) {
    const std::string shown = fields_text({&kinds::memory}, {});
    EXPECT_THAT(shown, StartsWith("Memory: table Memory, group memory_info\n  Id\n    row id\n"));
    EXPECT_THAT(shown, HasSubstr("  MemSize\n"
                                 "    size; 0 is an empty slot\n"
                                 "    unit    MiB\n"
                                 "    from    'Size in MB' in memory_info\n"
                                 "    absent  the setting is absent\n"));
    EXPECT_THAT(shown, HasSubstr("\nmemory type (SMBIOS 7.18.2)\n  1  other\n"));
    EXPECT_THAT(shown, HasSubstr("  bit 12  non-volatile\n"));
    EXPECT_THAT(shown, Not(HasSubstr("link speed")));
}

TEST(FieldsText, TellsOfTheFieldsOfANumberWithoutNumbersOfTheirOwn) {
    EXPECT_THAT(fields_text({&kinds::processors}, {}),
                HasSubstr("\n\nprocessor status (SMBIOS 7.5, offset 18h)\n  bits 2-0: 0 unknown, "));
}

TEST(FieldsText, NamesTheValueThatStandsForAnAbsentOne) {
    EXPECT_THAT(fields_text({&kinds::bridges}, {}), HasSubstr("; stored as -1\n"));
    EXPECT_THAT(fields_text({&kinds::bridges}, {}), HasSubstr("; stored as 4294967295\n"));
}

TEST(FieldsJson, HoldsTheSameForPrograms) {
    const auto shown = nlohmann::json::parse(fields_json({&kinds::memory}));
    EXPECT_EQ(shown["schema"], 2);
    EXPECT_EQ(shown["memory"].size(), 32u);
    const auto& node = shown["memory"][2];
    EXPECT_EQ(node["column"], "NodeIndex");
    EXPECT_EQ(node["absent_value"], 4294967295);
    EXPECT_EQ(node["unit"], nullptr);
    EXPECT_EQ(shown["memory"][10]["values"]["section"], "SMBIOS 7.18.2");
}

TEST(FieldsJson, TellsWhatTheNumbersOfAnEnumerationAre) {
    const auto shown = nlohmann::json::parse(fields_json({&kinds::processors, &kinds::memory}));
    const auto role_of = [&shown](const char* kind, const std::string& column) {
        const auto& fields = shown[kind];
        const auto found = std::find_if(fields.begin(), fields.end(),
                                        [&column](const auto& each) { return each["column"] == column; });
        return (*found)["values"]["role"];
    };
    EXPECT_EQ(role_of("memory", "MemType"), "value");
    EXPECT_EQ(role_of("memory", "TypeDetail"), "bit");
    EXPECT_EQ(role_of("processors", "Voltage"), "field");
}
