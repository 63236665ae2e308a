// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <sstream>
#include <string>

#include "tools/subcommands/command_test.h"

using testing::HasSubstr;

class Fields : public command_test {};

TEST_F(Fields, FitIntoTheWidthOfTheEnvironmentAlsoInAPipe) {
    const std::string shown = run("COLUMNS=50 zebdb-cds fields bridges | cat").out;
    EXPECT_THAT(
        shown,
        HasSubstr("\n    row id of the bridge that it is behind; in\n        diff the address of that bridge\n"));
    std::istringstream lines(shown);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 50u) << line;
    }
}
