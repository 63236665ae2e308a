// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "support/allocations.h"
#include "support/captured_log.h"
#include "support/captured_stderr.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

std::vector<std::pair<int, std::string>> lines_of_syslog;

}  // namespace

// In the place of the C library's, so that nothing reaches the machine's own log.
void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char line[64];
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    lines_of_syslog.emplace_back(priority, line);
}

namespace {

/// VONK_LOG has a value, or none with null, as long as this lives.
class log_target {
public:
    explicit log_target(const char* value) {
        if (value == nullptr) {
            unsetenv("VONK_LOG");
        } else {
            setenv("VONK_LOG", value, 1);
        }
    }
    ~log_target() { unsetenv("VONK_LOG"); }
    log_target(const log_target&) = delete;
    log_target& operator=(const log_target&) = delete;
};

class VonkLog : public testing::Test {
protected:
    const log_target target{nullptr};
    const captured_stderr standard_error;
};

TEST_F(VonkLog, WritesErrorsWithTheirLevel) {
    vonk_log::logErr("no memory");
    EXPECT_EQ(standard_error.text(), "ERROR: no memory\n");
}

TEST_F(VonkLog, WritesControlCharactersAsEscapes) {
    vonk_log::logErr("%s", "a\x1b[2J\r\x7F\u009bz\t\u00e9");
    EXPECT_EQ(standard_error.text(), "ERROR: a\\x1b[2J\\x0d\\x7f\\x9bz\t\u00e9\n");
}

TEST_F(VonkLog, WritesTheFirstAndTheLastOfTheControlCharactersAsEscapes) {
    vonk_log::logErr("%s", "\x01\x1f \x7f \u0080\u009f \xC2\x7F");
    EXPECT_EQ(standard_error.text(), "ERROR: \\x01\\x1f \\x7f \\x80\\x9f \xC2\\x7f\n");
}

TEST_F(VonkLog, WritesWhatIsNearlyAControlCharacterAsItIs) {
    for (const std::string text : {"\u00a0", "\u00c2", "\xC2z", "\xC2\xC2", "\xC2"}) {
        const captured_stderr error;
        vonk_log::logErr("%s", text.c_str());
        EXPECT_EQ(error.text(), "ERROR: " + text + '\n');
    }
}

TEST_F(VonkLog, WritesTheFormatOfAnArgumentThatCannotBeWritten) {
    vonk_log::logErr("%ls", L"\u20ac");  // not in the C locale
    EXPECT_EQ(standard_error.text(), "ERROR: %ls\n");
}

TEST_F(VonkLog, TellsOfALineThatItHasNoMemoryFor) {
    const std::string text(100, '\x1b');
    std::string usual;
    for (long n = 1; usual.empty(); ++n) {
        const captured_stderr error;
        bool fired = false;
        {
            const failing_allocation memory(n);
            vonk_log::logErr("%s", text.c_str());
            fired = memory.fired();
        }
        if (fired) {
            EXPECT_EQ(error.text(), "ERROR: no memory for a line of the log\n") << n;
        } else {
            usual = error.text();
            EXPECT_GT(n, 1);
        }
    }
    EXPECT_EQ(usual.size(), std::string("ERROR: \n").size() + 100 * std::string("\\x1b").size());
}

TEST_F(VonkLog, WritesWarningsWithTheirLevel) {
    vonk_log::logWarn("no location");
    EXPECT_EQ(standard_error.text(), "WARNING: no location\n");
}

TEST_F(VonkLog, WritesInformationWithItsLevel) {
    vonk_log::logInfo("done");
    EXPECT_EQ(standard_error.text(), "INFO: done\n");
}

TEST_F(VonkLog, FillsInTheArguments) {
    vonk_log::logErr("%s: rc=%d, 0x%x", "insert", -1, 255U);
    EXPECT_EQ(standard_error.text(), "ERROR: insert: rc=-1, 0xff\n");
}

TEST_F(VonkLog, WritesPercentSignsOfArgumentsAsTheyAre) {
    vonk_log::logErr("%s", "100%s");
    EXPECT_EQ(standard_error.text(), "ERROR: 100%s\n");
}

TEST_F(VonkLog, DoesNotDoubleALineEndOfTheText) {
    vonk_log::logInfo("done\n");
    EXPECT_EQ(standard_error.text(), "INFO: done\n");
}

TEST_F(VonkLog, WritesAnEmptyText) {
    vonk_log::logInfo("%s", "");
    EXPECT_EQ(standard_error.text(), "INFO: \n");
}

TEST_F(VonkLog, WritesLongTextsWhole) {
    const std::string text(100000, 'x');
    vonk_log::logErr("%s", text.c_str());
    EXPECT_EQ(standard_error.text(), "ERROR: " + text + '\n');
}

TEST_F(VonkLog, WritesNothingToStandardErrorWhenSyslogIsAskedFor) {
    const log_target syslog("syslog");
    vonk_log::logErr("no memory");
    EXPECT_EQ(standard_error.text(), "");
}

TEST_F(VonkLog, GivesSyslogEachLineWithItsPriority) {
    const log_target syslog("syslog");
    lines_of_syslog.clear();
    vonk_log::logErr("no %s", "memory");
    vonk_log::logWarn("little memory");
    vonk_log::logInfo("100%%%% of memory");
    EXPECT_THAT(lines_of_syslog,
                ElementsAre(Pair(LOG_USER | LOG_ERR, "no memory"), Pair(LOG_USER | LOG_WARNING, "little memory"),
                            Pair(LOG_USER | LOG_INFO, "100%% of memory")));
}

TEST_F(VonkLog, WritesToStandardErrorForAnyOtherTarget) {
    const log_target other("file");
    vonk_log::logErr("no memory");
    EXPECT_EQ(standard_error.text(), "ERROR: no memory\n");
}

TEST_F(VonkLog, HandsItsLinesToASink) {
    const captured_log log;
    vonk_log::logErr("rc=%d", 1);
    vonk_log::logWarn("rc=%d", 2);
    vonk_log::logInfo("rc=%d\n", 3);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: rc=1", "WARNING: rc=2", "INFO: rc=3\n"));
    EXPECT_EQ(standard_error.text(), "");
}

TEST_F(VonkLog, GoesBackToStandardErrorWithoutASink) {
    {
        const captured_log log;
        vonk_log::logErr("to the sink");
    }
    vonk_log::logErr("no memory");
    EXPECT_EQ(standard_error.text(), "ERROR: no memory\n");
}

TEST_F(VonkLog, WritesToTheUsualPlaceBesideASink) {
    const captured_log log;
    vonk_log::write(vonk_log::level::warning, "no location");
    EXPECT_EQ(standard_error.text(), "WARNING: no location\n");
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
