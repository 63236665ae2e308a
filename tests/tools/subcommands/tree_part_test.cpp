// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/tree_test.h"

using testing::IsEmpty;

// A bridge that leads to another one and that to two functions, beside a bridge that leads nowhere.
class TreePart : public tree_test {
protected:
    TreePart() {
        add_bridge(1, -1, 0, 1);
        add_bridge(2, 1, 1, 0);
        add_bridge(3, -1, 0, 2);
        add_function(1, 2, 2, 0);
        add_function(2, 2, 2, 1);
    }
};

TEST_F(TreePart, IsWhatStandsAtTheAddressWithThePathToItAndWhatIsBehindIt) {
    const std::string from_the_root =
        "Node 1\n"
        "`- Segment 0000\n"
        "   `- 0000:00:01.0 bridge\n"
        "      `- 0000:01:00.0 bridge\n";
    EXPECT_EQ(tree("--part 0000:02:01.0"), from_the_root + "         `- 0000:02:01.0 function\n");
    EXPECT_EQ(tree("--part 0000:01:00.0"), from_the_root +
                                               "         +- 0000:02:00.0 function\n"
                                               "         `- 0000:02:01.0 function\n");
}

TEST_F(TreePart, MayBeNamedWithoutTheSegment) {
    EXPECT_EQ(tree("--part 02:01.0"), tree("--part 0000:02:01.0"));
}

TEST_F(TreePart, OfWhichThereIsNoneIsNamedWithWhoKnowsWhy) {
    const command_result result = run("zebdb-cds tree --part 09:00.0");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err,
              "zebdb-cds: there is nothing at 0000:09:00.0 in the inventory; 'zebdb-cds explain FILE --part "
              "0000:09:00.0' tells what became of it\n");
}

TEST_F(TreePart, IsNamedByAnAddress) {
    const command_result result = run("zebdb-cds tree --part CPU1");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "zebdb-cds: --part 'CPU1' is no PCI address, as 0000:3b:00.0 or 3b:00.0 is\n");
}
