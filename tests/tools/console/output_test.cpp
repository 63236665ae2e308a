// SPDX-License-Identifier: Apache-2.0

#include "console/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string>

#include "console/failure.h"
#include "support/captured_stderr.h"
#include "support/pseudo_terminal.h"

namespace {

void pass_a_millisecond() {
    const timespec millisecond = {0, 1'000'000};
    nanosleep(&millisecond, nullptr);
}

// Numbers one behind the other, so that no two parts of it are alike.
std::string long_text() {
    std::string text;
    for (int i = 0; i < 30'000; ++i) {
        text += std::to_string(i);
        text += ' ';
    }
    return text;
}

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

TEST(Printing, FailsWhereTheTextCannotBeWritten) {
    const int usual = dup(STDOUT_FILENO);
    const int full = open("/dev/full", O_WRONLY);
    dup2(full, STDOUT_FILENO);
    std::string problem = "none";
    try {
        print("a text\n");
    } catch (const failure& refused) {
        problem = refused.what();
    }
    dup2(usual, STDOUT_FILENO);
    close(usual);
    close(full);
    EXPECT_EQ(problem, "cannot write to standard output: No space left on device");
}

TEST(Writing, GivesTheErrorOfTheSystem) {
    EXPECT_EQ(write_all(-1, "a text\n"), EBADF);
}

TEST(Writing, OfNothingNeedsNoPlace) {
    EXPECT_EQ(write_all(-1, ""), 0);
}

// A pipe that nobody reads yet takes a part of it; signals interrupt the write of the rest.
TEST(Writing, GoesOnWhereASignalHasInterruptedIt) {
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe(ends.data()), 0);
    const std::string text = long_text();
    const pid_t writer = fork();
    if (writer == 0) {
        close(ends[0]);
        struct sigaction interrupt = {};
        interrupt.sa_handler = [](int) {};
        sigaction(SIGUSR1, &interrupt, nullptr);
        _exit(write_all(ends[1], text));
    }
    close(ends[1]);
    const int capacity = fcntl(ends[0], F_GETPIPE_SZ);
    for (int filled = 0; filled < capacity; pass_a_millisecond()) {
        ASSERT_EQ(ioctl(ends[0], FIONREAD, &filled), 0);
    }
    for (int i = 0; i < 20; ++i) {
        kill(writer, SIGUSR1);
        pass_a_millisecond();
    }
    std::string read_text;
    char block[4096];
    for (ssize_t count; (count = read(ends[0], block, sizeof block)) > 0;) {
        read_text.append(block, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = -1;
    EXPECT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(read_text == text);
}

TEST(WritingOfErrors, ChangesNothing) {
    const captured_stderr standard_error;
    write_error("a\x1b\n");
    EXPECT_EQ(standard_error.text(), "a\x1b\n");
}

TEST(Complaint, IsALineOfTheCommand) {
    const captured_stderr standard_error;
    complain("a problem\nof \xFF\x1b");
    EXPECT_EQ(standard_error.text(), "zebdb-cds: a problem\\nof \uFFFD\\x1b\n");
}

TEST(NameInQuotes, IsOnOneLine) {
    EXPECT_EQ(in_quotes("my server.xml"), "'my server.xml'");
    EXPECT_EQ(in_quotes("a\n\xFF"), "'a\\n\uFFFD'");
}

TEST(IsTerminal, OfATerminalThatUnderstandsControlSequences) {
    const pseudo_terminal terminal(STDERR_FILENO);
    EXPECT_TRUE(is_terminal(STDERR_FILENO));
    unsetenv("TERM");
    EXPECT_TRUE(is_terminal(STDERR_FILENO));
}

TEST(IsTerminal, NotOfOneThatDoesNot) {
    const pseudo_terminal terminal(STDERR_FILENO);
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(is_terminal(STDERR_FILENO));
}

TEST(IsTerminal, NotOfAFile) {
    const captured_stderr standard_error;
    setenv("TERM", "xterm", 1);
    EXPECT_FALSE(is_terminal(STDERR_FILENO));
}

TEST(IsStyled, OnATerminalUnlessNoColorIsWanted) {
    const pseudo_terminal terminal(STDERR_FILENO);
    EXPECT_TRUE(is_styled(STDERR_FILENO));
    setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(is_styled(STDERR_FILENO));
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(is_styled(STDERR_FILENO));
    unsetenv("NO_COLOR");
}

TEST(IsStyled, NotInAFile) {
    const captured_stderr standard_error;
    unsetenv("NO_COLOR");
    EXPECT_FALSE(is_styled(STDERR_FILENO));
}

TEST(TerminalWidth, IsThatOfTheTerminal) {
    const pseudo_terminal terminal(STDERR_FILENO, 97);
    EXPECT_EQ(terminal_width(STDERR_FILENO), 97u);
}

TEST(TerminalWidth, IsUnknownOfAFile) {
    const captured_stderr standard_error;
    EXPECT_EQ(terminal_width(STDERR_FILENO), 0u);
}

TEST(ShellWord, IsANameAsItIsWhereAShellTakesItSo) {
    EXPECT_EQ(as_shell_word("a/b-1.xml"), "a/b-1.xml");
    EXPECT_EQ(as_shell_word("-"), "-");
    EXPECT_EQ(as_shell_word("AZaz09/._-+,:@%="), "AZaz09/._-+,:@%=");
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
