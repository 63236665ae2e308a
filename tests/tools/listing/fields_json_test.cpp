// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "listing/fields_formats.h"
#include "rows/kinds.h"
#include "tools/listing/fans.h"

TEST(FieldsJson, HoldsEverythingThatIsToldOfAColumn) {
    auto shown = nlohmann::ordered_json::parse(fields_json({&fans}));
    ASSERT_EQ(shown["fans"].size(), 6u);
    shown["fans"].erase(4);  // as the column before it
    EXPECT_EQ(shown, nlohmann::ordered_json::parse(R"({
        "schema": 2,
        "fans": [
            {"column": "Name", "meaning": "what it is called", "unit": null, "values": null, "from": "the rule",
             "absent": null, "absent_value": null},
            {"column": "Speed", "meaning": "how fast it turns", "unit": "MHz", "values": null, "from": "'Speed'",
             "absent": "it stands", "absent_value": null},
            {"column": "Serial", "meaning": "", "unit": null, "values": null, "from": "", "absent": "it has none",
             "absent_value": -1},
            {"column": "Place", "meaning": "where it sits", "unit": null,
             "values": {"name": "location", "section": "the firmware's own", "role": "value", "whole": false,
                        "names": [{"number": 0, "name": "on the board"}, {"number": 2, "name": "unknown"}]},
             "from": "'Place'", "absent": null, "absent_value": null},
            {"column": "Can", "meaning": "what it can", "unit": null,
             "values": {"name": "processor characteristics", "section": "SMBIOS 7.5.9", "role": "bit", "whole": true,
                        "names": [{"number": 1, "name": "unknown"},
                                  {"number": 2, "name": "64-bit capable"},
                                  {"number": 3, "name": "multi-core"},
                                  {"number": 4, "name": "several hardware threads a core"},
                                  {"number": 5, "name": "execute protection"},
                                  {"number": 6, "name": "enhanced virtualization"},
                                  {"number": 7, "name": "power and performance control"},
                                  {"number": 8, "name": "128-bit capable"},
                                  {"number": 9, "name": "Arm64 SoC ID"}]},
             "from": "'Can'", "absent": null, "absent_value": null}
        ]})"));
}

TEST(FieldsJson, HoldsTheKindsInTheirOrder) {
    const auto shown = nlohmann::ordered_json::parse(fields_json({&kinds::memory, &kinds::bridges}));
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown.begin().key(), "schema");
    EXPECT_EQ(std::next(shown.begin()).key(), "memory");
    EXPECT_EQ(shown["memory"].size(), 32u);
    EXPECT_EQ(shown["bridges"].size(), 14u);
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
