// SPDX-License-Identifier: Apache-2.0

#include "console/progress.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vonk_log.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "console/output.h"
#include "sources/library_log.h"
#include "support/captured_stderr.h"
#include "support/pseudo_terminal.h"
#include "support/scratch_folder.h"

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr off_t mebibyte = off_t{1} << 20;

// What stands in the line, one text after the other, and behind it at last.
std::vector<std::string> texts_of_line(const std::string& written) {
    const std::string erase_line = "\r\033[K";
    std::vector<std::string> texts;
    std::size_t begin = 0;
    for (std::size_t end; (end = written.find(erase_line, begin)) != std::string::npos;
         begin = end + erase_line.size()) {
        texts.push_back(written.substr(begin, end - begin));
    }
    texts.push_back(written.substr(begin));
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

}  // namespace

class Progress : public testing::Test {
protected:
    Progress() { make(path_, 8 * mebibyte); }
    ~Progress() override {
        for (const int file : opened_) {
            close(file);
        }
    }

    static void make(const std::string& path, off_t size) {
        close(open(path.c_str(), O_CREAT | O_WRONLY, 0600));
        ASSERT_EQ(truncate(path.c_str(), size), 0);
    }

    int open_at(const std::string& path, off_t position) {
        const int file = open(path.c_str(), O_RDONLY);
        lseek(file, position, SEEK_SET);
        opened_.push_back(file);
        return file;
    }

    static struct stat status_of(const std::string& path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status;
    }

    static std::vector<std::string> texts_for(const struct stat& file) {
        pseudo_terminal terminal(STDERR_FILENO);
        std::make_unique<progress>(file).reset();
        return texts_of_line(terminal.text());
    }

    std::vector<std::string> texts_at(off_t position) {
        open_at(path_, position);
        return texts_for(status_of(path_));
    }

    std::vector<std::string> texts_of_size(off_t size) const {
        make(path_, size);
        return texts_for(status_of(path_));
    }

    scratch_folder folder_;
    std::string path_ = folder_.file("large");

private:
    std::vector<int> opened_;
};

TEST_F(Progress, SaysHowMuchIsReadAndIsGoneAfterwards) {
    EXPECT_THAT(texts_at(4 * mebibyte), ElementsAre("", "reading 8 MiB: 50 %", ""));
}

TEST_F(Progress, CountsWholePercents) {
    EXPECT_THAT(texts_at(8 * mebibyte - 1), ElementsAre("", "reading 8 MiB: 99 %", ""));
}

TEST_F(Progress, SaysThatRowsAreStoredWhenAllIsRead) {
    EXPECT_THAT(texts_at(8 * mebibyte), ElementsAre("", "storing rows ...", ""));
}

TEST_F(Progress, GoesByTheFurthestOfSeveralReaders) {
    open_at(path_, 4 * mebibyte);
    open_at(path_, 6 * mebibyte);
    EXPECT_THAT(texts_at(2 * mebibyte), ElementsAre("", "reading 8 MiB: 75 %", ""));
}

TEST_F(Progress, GoesByNoOtherFile) {
    make(folder_.file("other"), 8 * mebibyte);
    open_at(folder_.file("other"), 8 * mebibyte);
    EXPECT_THAT(texts_at(4 * mebibyte), ElementsAre("", "reading 8 MiB: 50 %", ""));
}

TEST_F(Progress, GoesByNoFileOfThatNumberOnAnotherDevice) {
    open_at(path_, 4 * mebibyte);
    struct stat elsewhere = status_of(path_);
    ++elsewhere.st_dev;
    EXPECT_THAT(texts_for(elsewhere), ElementsAre("", "reading 8 MiB: 0 %", ""));
}

TEST_F(Progress, HasWholeMebibytes) {
    EXPECT_THAT(texts_of_size(4 * mebibyte + mebibyte / 2 - 1), ElementsAre("", "reading 4 MiB: 0 %", ""));
    EXPECT_THAT(texts_of_size(4 * mebibyte + mebibyte / 2), ElementsAre("", "reading 5 MiB: 0 %", ""));
}

TEST_F(Progress, IsShownFromFourMebibytesOn) {
    EXPECT_THAT(texts_of_size(4 * mebibyte), ElementsAre("", "reading 4 MiB: 0 %", ""));
    EXPECT_THAT(texts_of_size(4 * mebibyte - 1), ElementsAre(""));
}

TEST_F(Progress, IsNotShownOfWhatIsNoFile) {
    struct stat pipe = status_of(path_);
    pipe.st_mode = S_IFIFO;
    EXPECT_THAT(texts_for(pipe), ElementsAre(""));
}

TEST_F(Progress, IsNotShownWhereStandardErrorIsNoTerminal) {
    const captured_stderr standard_error;
    std::make_unique<progress>(status_of(path_)).reset();
    EXPECT_THAT(standard_error.text(), IsEmpty());
}

TEST_F(Progress, FollowsTheReader) {
    const int file = open_at(path_, 0);
    pseudo_terminal terminal(STDERR_FILENO);
    {
        const progress line(status_of(path_));
        terminal.await("reading 8 MiB: 0 %");
        lseek(file, 2 * mebibyte, SEEK_SET);
        terminal.await("reading 8 MiB: 25 %");
        lseek(file, 8 * mebibyte, SEEK_SET);
        terminal.await("storing rows ...");
    }
    EXPECT_THAT(texts_of_line(terminal.text()),
                ElementsAre("", "reading 8 MiB: 0 %", "reading 8 MiB: 25 %", "storing rows ...", ""));
}

TEST_F(Progress, StaysAtStoringWhenTheFileIsReadAgain) {
    const int file = open_at(path_, 8 * mebibyte);
    pseudo_terminal terminal(STDERR_FILENO);
    {
        const progress line(status_of(path_));
        terminal.await("storing rows ...");
        lseek(file, 0, SEEK_SET);
        terminal.await("\r", 2);
    }
    EXPECT_THAT(texts_of_line(terminal.text()), ElementsAre("", "storing rows ...", ""));
}

TEST_F(Progress, SaysThatRowsAreStoredWhenTheFileIsNoLongerOpen) {
    const int file = open(path_.c_str(), O_RDONLY);
    pseudo_terminal terminal(STDERR_FILENO);
    {
        const progress line(status_of(path_));
        terminal.await("reading 8 MiB: 0 %");
        close(file);
        terminal.await("storing rows ...");
    }
    EXPECT_THAT(texts_of_line(terminal.text()), ElementsAre("", "reading 8 MiB: 0 %", "storing rows ...", ""));
}

TEST_F(Progress, WaitsForAFileThatIsNotOpenYet) {
    pseudo_terminal terminal(STDERR_FILENO);
    {
        const progress line(status_of(path_));
        terminal.await("reading 8 MiB: 0 %", 3);
    }
    EXPECT_THAT(texts_of_line(terminal.text()), ElementsAre("", "reading 8 MiB: 0 %", ""));
}

TEST_F(Progress, StandsAsideForOtherLines) {
    open_at(path_, 4 * mebibyte);
    pseudo_terminal terminal(STDERR_FILENO);
    {
        progress line(status_of(path_));
        terminal.await("50 %");
        line.stand_aside([] { write_error("a line\n"); });
        terminal.await("a line\n");
        terminal.await("50 %");
    }
    EXPECT_THAT(texts_of_line(terminal.text()),
                ElementsAre("", "reading 8 MiB: 50 %", "a line\n", "reading 8 MiB: 50 %", ""));
}

TEST_F(Progress, IsTakenAwayOnceForSeveralLines) {
    pseudo_terminal terminal(STDERR_FILENO);
    {
        progress line(status_of(path_));
        terminal.await("0 %");
        for (const char* text : {"one\n", "two\n", "three\n"}) {
            line.stand_aside([text] { write_error(text); });
        }
    }
    const std::string written = terminal.text();
    EXPECT_THAT(written, HasSubstr("0 %\r\033[Kone\n"));
    EXPECT_THAT(written, Not(AnyOf(HasSubstr("one\n\r\033[Ktwo"), HasSubstr("two\n\r\033[Kthree"))));
}

TEST_F(Progress, ThatIsNotShownLeavesOtherLinesAlone) {
    const captured_stderr standard_error;
    progress line(status_of(path_));
    line.stand_aside([] { write_error("a line\n"); });
    EXPECT_EQ(standard_error.text(), "a line\n");
}

TEST_F(Progress, StandsAsideForTheLog) {
    open_at(path_, 4 * mebibyte);
    pseudo_terminal terminal(STDERR_FILENO);
    {
        progress line(status_of(path_));
        const library_log log(line);
        terminal.await("50 %");
        vonk_log::logErr("a problem");
        terminal.await("a problem\n");
        terminal.await("50 %");
    }
    EXPECT_THAT(texts_of_line(terminal.text()),
                ElementsAre("", "reading 8 MiB: 50 %", "ERROR: a problem\n", "reading 8 MiB: 50 %", ""));
}
