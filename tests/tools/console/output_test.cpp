// SPDX-License-Identifier: Apache-2.0

#include "console/output.h"

#include <gtest/gtest.h>

TEST(ShellWord, IsANameAsItIsWhereAShellTakesItSo) {
    EXPECT_EQ(as_shell_word("a/b-1.xml"), "a/b-1.xml");
    EXPECT_EQ(as_shell_word("-"), "-");
}

TEST(ShellWord, IsQuotedWhereAShellWouldTakeItForSomethingElse) {
    EXPECT_EQ(as_shell_word("my server.xml"), "'my server.xml'");
    EXPECT_EQ(as_shell_word("a$b"), "'a$b'");
    EXPECT_EQ(as_shell_word("it's"), "'it'\\''s'");
    EXPECT_EQ(as_shell_word(""), "''");
}

TEST(ShellWord, SteersNoTerminal) {
    EXPECT_EQ(as_shell_word("a\x1b[2J"), "'a\\x1b[2J'");
}
