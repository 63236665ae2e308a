// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/tree_test.h"

using testing::HasSubstr;
using testing::Not;

// What a terminal gets.
class TreeTerminal : public tree_test {
protected:
    TreeTerminal() {
        add_bridge(1, -1, 0, 1);
        add_function(1, 1, 1, 0);
        add_function(2, 1, 1, 1, "SlotDesignation = '" + std::string(100, 'x') + "'");
        add_function(3, -1, 2, 0);
    }

    std::string on_terminal(const std::string& environment = "", const std::string& arguments = "") const {
        write("commands", "stty cols 60 -onlcr\n" + environment + " zebdb-cds tree " + arguments + "\n");
        const command_result result = run_without_names("script --quiet --return --command 'sh ./commands' /dev/null");
        EXPECT_EQ(result.status, 0);
        return result.out;
    }
};

TEST_F(TreeTerminal, ThatTakesUtf8GetsBoxesAndBoldHeadingsAndLinesThatFit) {
    EXPECT_EQ(on_terminal(),
              "\033[1mNode 1\033[0m\n"
              "└─ Segment 0000\n"
              "   ├─ 0000:00:01.0 bridge\n"
              "   │  ├─ 0000:01:00.0 function\n"
              "   │  └─ 0000:01:01.0 function,\n"
              "   │        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   │        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   │        xxxx\n"
              "   └─ 0000:02:00.0 function\n");
}

TEST_F(TreeTerminal, WithoutUtf8GetsAscii) {
    EXPECT_EQ(on_terminal("LC_ALL=C"),
              "\033[1mNode 1\033[0m\n"
              "`- Segment 0000\n"
              "   +- 0000:00:01.0 bridge\n"
              "   |  +- 0000:01:00.0 function\n"
              "   |  `- 0000:01:01.0 function,\n"
              "   |        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   |        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   |        xxxx\n"
              "   `- 0000:02:00.0 function\n");
}

TEST_F(TreeTerminal, WithNoColorGetsBoxesInPlainLinesThatFit) {
    EXPECT_EQ(on_terminal("NO_COLOR=1"),
              "Node 1\n"
              "└─ Segment 0000\n"
              "   ├─ 0000:00:01.0 bridge\n"
              "   │  ├─ 0000:01:00.0 function\n"
              "   │  └─ 0000:01:01.0 function,\n"
              "   │        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   │        xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n"
              "   │        xxxx\n"
              "   └─ 0000:02:00.0 function\n");
}

TEST_F(TreeTerminal, ThatUnderstandsNoControlSequencesGetsWhatAFileOfItsWidthGets) {
    EXPECT_EQ(on_terminal("TERM=dumb"), run_without_names("COLUMNS=60 zebdb-cds tree").out);
}

TEST_F(TreeTerminal, GetsTheSameJsonAsAFile) {
    EXPECT_EQ(on_terminal("", "--format json"), tree("--format json"));
}

TEST_F(TreeTerminal, IsTheOnlyPlaceForBoxes) {
    EXPECT_THAT(tree(), Not(HasSubstr("─")));
}
