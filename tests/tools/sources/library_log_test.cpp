// SPDX-License-Identifier: Apache-2.0

#include "sources/library_log.h"

#include <gmock/gmock.h>
#include <vonk_log.h>

#include <memory>

#include "sources/memory_database.h"
#include "support/captured_stderr.h"

using testing::HasSubstr;

namespace {

void fail_to_delete(const memory_database& database, const char* table) {
    zeb_db_delete(database.handle(), table, nullptr, nullptr, 0, 0);
}

}  // namespace

TEST(LibraryLog, KeepsEveryLineWithItsLevel) {
    const library_log log(log_display::hidden);
    vonk_log::logWarn("first %d", 1);
    vonk_log::logErr("second");
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[0].at, vonk_log::level::warning);
    EXPECT_EQ(log.lines()[0].text, "first 1");
    EXPECT_EQ(log.lines()[1].at, vonk_log::level::error);
}

TEST(LibraryLog, IsUtf8) {
    const library_log log(log_display::hidden);
    vonk_log::logErr("a\xFF");
    EXPECT_EQ(log.lines().front().text, "a\uFFFD");
}

TEST(LibraryLog, ShowsNothingThatSteersATerminalOrTurnsTheDirectionOfWriting) {
    const captured_stderr standard_error;
    const library_log log;
    vonk_log::logErr("first\u202e\nsecond\x1b[2J");
    EXPECT_EQ(standard_error.text(), "ERROR: first\\u202e\nsecond\\x1b[2J\n");
}

TEST(LibraryLog, ShowsProblemsOnlyWhereThatIsAskedFor) {
    const captured_stderr standard_error;
    const library_log log(log_display::problems);
    vonk_log::logInfo("news");
    vonk_log::logWarn("a warning");
    vonk_log::logErr("an error");
    EXPECT_EQ(standard_error.text(), "WARNING: a warning\nERROR: an error\n");
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST(LibraryLog, ShowsErrorsOnlyWhereThatIsAskedFor) {
    const captured_stderr standard_error;
    const library_log log(log_display::errors);
    vonk_log::logInfo("news");
    vonk_log::logWarn("a warning");
    vonk_log::logErr("an error");
    EXPECT_EQ(standard_error.text(), "ERROR: an error\n");
}

TEST(LibraryLog, HasNoProblemWithoutAnError) {
    const library_log log(log_display::hidden);
    vonk_log::logWarn("a warning");
    EXPECT_EQ(log.problem(), "");
    EXPECT_EQ(log.database_failure(), std::nullopt);
}

TEST(LibraryLog, HasTheFirstErrorForItsProblemOnOneLine) {
    const library_log log(log_display::hidden);
    vonk_log::logErr("first\nerror");
    vonk_log::logErr("its consequence");
    EXPECT_EQ(log.problem(), "first error");
}

TEST(LibraryLog, HasTheFailureOfTheDatabaseForItsProblemWhateverWasLogged) {
    const memory_database database;
    const library_log log(log_display::hidden);
    vonk_log::logErr("an error");
    fail_to_delete(database, "NoSuchTable");
    fail_to_delete(database, "NoOtherTable");
    EXPECT_THAT(log.problem(), HasSubstr("no such table: NoSuchTable"));
    EXPECT_EQ(log.database_failure(), log.problem());
}

TEST(LibraryLog, LeavesTheLogToItselfWhenItGoes) {
    const captured_stderr standard_error;
    std::make_unique<library_log>(log_display::hidden).reset();
    vonk_log::logErr("an error");
    EXPECT_EQ(standard_error.text(), "ERROR: an error\n");
}

TEST(LibraryLog, IsShownBesideAProgressLine) {
    const captured_stderr standard_error;
    progress line({});
    const library_log log(line);
    vonk_log::logErr("an error");
    EXPECT_EQ(standard_error.text(), "ERROR: an error\n");
}

TEST(LibraryLog, KnowsNothingOfAnEarlierFailure) {
    const memory_database database;
    {
        const library_log earlier(log_display::hidden);
        fail_to_delete(database, "NoSuchTable");
    }
    const library_log log(log_display::hidden);
    EXPECT_EQ(log.database_failure(), std::nullopt);
}
