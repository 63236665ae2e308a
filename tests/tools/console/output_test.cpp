// SPDX-License-Identifier: Apache-2.0

#include "console/output.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>

namespace {

/// As long as it lives, standard output is a pipe, which is read through this or not at all.
class piped_output {
public:
    piped_output() : usual_(dup(STDOUT_FILENO)) {
        EXPECT_EQ(pipe(ends_.data()), 0);
        dup2(ends_[1], STDOUT_FILENO);
        close(ends_[1]);
    }
    ~piped_output() {
        dup2(usual_, STDOUT_FILENO);
        close(usual_);
        close(ends_[0]);
    }
    piped_output(const piped_output&) = delete;
    piped_output& operator=(const piped_output&) = delete;

    std::string read_some() const {
        char text[100];
        const ssize_t count = read(ends_[0], text, sizeof text);
        return {text, text + std::max<ssize_t>(count, 0)};
    }
    void leave_unread() {
        close(ends_[0]);
        ends_[0] = -1;
    }

private:
    int usual_;
    std::array<int, 2> ends_ = {-1, -1};
};

}  // namespace

TEST(Printing, WritesAllAndTellsSo) {
    const piped_output output;
    EXPECT_TRUE(print("a text\n"));
    EXPECT_EQ(output.read_some(), "a text\n");
}

TEST(Printing, TellsThatNobodyReads) {
    const auto usual = std::signal(SIGPIPE, SIG_IGN);
    piped_output output;
    output.leave_unread();
    EXPECT_FALSE(print("a text\n"));
    std::signal(SIGPIPE, usual);
}

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
