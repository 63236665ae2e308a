// SPDX-License-Identifier: Apache-2.0

// Opening databases that another version of the platform made. databases/version-N.db is one that version N made, with
// rows in every table.

#include <linux/capability.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "platform/database_test.h"

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

namespace {

const fs::path samples = SOURCE_DIR "/tests/platform/databases";

std::vector<std::string> sample_names() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(samples)) {
        names.push_back(entry.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> tables_of(const std::string& path) {
    return sqlite_database(path).run("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name");
}

/// The columns of each table with all that is said about them, in no order: a later version adds its own at the end.
std::map<std::string, std::vector<std::string>> columns_of(const std::string& path) {
    std::map<std::string, std::vector<std::string>> columns;
    for (const std::string& table : tables_of(path)) {
        columns[table] = sqlite_database(path).run(
            "SELECT name, type, \"notnull\", dflt_value, pk FROM "
            "pragma_table_info('" +
            table + "') ORDER BY name");
    }
    return columns;
}

/// The columns of each table by name, ready for a SELECT.
std::map<std::string, std::string> column_lists_of(const std::string& path) {
    std::map<std::string, std::string> lists;
    for (const std::string& table : tables_of(path)) {
        lists[table] =
            sqlite_database(path).run("SELECT group_concat(name) FROM pragma_table_info('" + table + "')")[0];
    }
    return lists;
}

std::map<std::string, std::vector<std::string>> rows_of(const std::string& path,
                                                        const std::map<std::string, std::string>& column_lists) {
    std::map<std::string, std::vector<std::string>> rows;
    for (const auto& [table, columns] : column_lists) {
        rows[table] = sqlite_database(path).run("SELECT " + columns + " FROM " + table + " ORDER BY rowid");
    }
    return rows;
}

/// `handle` is on a new database, which has the version of this platform.
class DatabaseVersion : public DatabaseTest {
protected:
    int open_database(const std::string& at) {
        _zeb_db_handle_t* opened = nullptr;
        const int code = zeb_db_open(at.c_str(), &opened);
        zeb_db_close(opened);
        return code;
    }

    std::string copy_of(const std::string& sample) const {
        const std::string copy = folder.file(sample + ".db");
        fs::copy_file(samples / (sample + ".db"), copy);
        fs::permissions(copy, fs::perms::owner_read | fs::perms::owner_write);
        return copy;
    }

    static int version_of(const std::string& at) {
        return std::stoi(sqlite_database(at).run("PRAGMA user_version")[0]);
    }
    int current_version() const { return version_of(path); }
};

TEST_F(DatabaseVersion, HasASampleForEachEarlierOne) {
    std::vector<std::string> earlier;
    for (int version = 0; version < current_version(); ++version) {
        earlier.push_back("version-" + std::to_string(version));
    }
    EXPECT_THAT(sample_names(), ElementsAreArray(earlier));
}

class EarlierVersion : public DatabaseVersion, public testing::WithParamInterface<std::string> {
protected:
    const std::string sample = copy_of(GetParam());
};

TEST_P(EarlierVersion, HasRowsInEveryTableOfItsSample) {
    for (const auto& [table, rows] : rows_of(sample, column_lists_of(sample))) {
        EXPECT_THAT(rows, Not(IsEmpty())) << table;
    }
}

TEST_P(EarlierVersion, BecomesTheCurrentOneWhenItIsOpened) {
    EXPECT_EQ(open_database(sample), 0);
    EXPECT_EQ(version_of(sample), current_version());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_P(EarlierVersion, GainsEveryTableAndColumnOfANewDatabase) {
    ASSERT_EQ(open_database(sample), 0);
    EXPECT_EQ(columns_of(sample), columns_of(path));
}

TEST_P(EarlierVersion, KeepsItsRows) {
    const auto columns = column_lists_of(sample);
    const auto before = rows_of(sample, columns);
    ASSERT_EQ(open_database(sample), 0);
    EXPECT_EQ(rows_of(sample, columns), before);
}

TEST_P(EarlierVersion, IsTheCurrentOneForAllOfSeveralProcessesThatOpenItAtTheSameTime) {
    int start[2];
    ASSERT_EQ(pipe(start), 0);
    std::vector<pid_t> openers(4);
    for (pid_t& opener : openers) {
        opener = fork();
        if (opener == 0) {
            close(start[1]);
            char nothing = 0;
            const bool started = read(start[0], &nothing, 1) == 0;
            _exit(started ? open_database(sample) : 255);
        }
    }
    close(start[0]);
    close(start[1]);
    std::vector<int> codes;
    for (const pid_t opener : openers) {
        int status = -1;
        waitpid(opener, &status, 0);
        codes.push_back(status);
    }
    EXPECT_THAT(codes, Each(0));
    EXPECT_EQ(version_of(sample), current_version());
    EXPECT_EQ(columns_of(sample), columns_of(path));
}

TEST_P(EarlierVersion, WaitsUntilOthersHaveReadIt) {
    sqlite_database reader(sample);
    reader.run("BEGIN; SELECT * FROM Memory");
    std::thread reading([&reader] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        reader.run("COMMIT");
    });
    EXPECT_EQ(open_database(sample), 0);
    reading.join();
    EXPECT_EQ(version_of(sample), current_version());
}

/// Takes from this thread what lets root write to a file in spite of its permissions.
class without_privileges {
public:
    without_privileges() {
        get(before_);
        auto none = before_;
        none[0].effective = none[1].effective = 0;
        set(none);
    }
    ~without_privileges() { set(before_); }
    without_privileges(const without_privileges&) = delete;
    without_privileges& operator=(const without_privileges&) = delete;

private:
    using capabilities = std::array<__user_cap_data_struct, 2>;

    static void get(capabilities& of) {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        ASSERT_EQ(syscall(SYS_capget, &header, of.data()), 0);
    }
    static void set(const capabilities& to) {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        ASSERT_EQ(syscall(SYS_capset, &header, to.data()), 0);
    }

    capabilities before_ = {};
};

TEST_P(EarlierVersion, IsReadAsItIsWhenItCannotBeWritten) {
    const std::string before = content_of(sample);
    fs::permissions(sample, fs::perms::owner_read);
    const without_privileges reader;
    _zeb_db_handle_t* opened = nullptr;
    ASSERT_EQ(zeb_db_open(sample.c_str(), &opened), 0);
    const handle_ptr owner(opened);
    const char* const columns[] = {"CoreCount"};
    zeb_db_result_t* result = nullptr;
    EXPECT_EQ(zeb_db_query(opened, "Processor", columns, 1, nullptr, nullptr, 0, nullptr, &result), 0);
    const result_ptr rows(result);
    EXPECT_EQ(zeb_db_result_step(result), 9);
    EXPECT_THAT(log.lines, IsEmpty());
    EXPECT_EQ(content_of(sample), before);
}

TEST_P(EarlierVersion, TakesNoRowWhenItCannotBeWritten) {
    fs::permissions(sample, fs::perms::owner_read);
    const without_privileges reader;
    _zeb_db_handle_t* opened = nullptr;
    ASSERT_EQ(zeb_db_open(sample.c_str(), &opened), 0);
    const handle_ptr owner(opened);
    EXPECT_EQ(insert(opened, "CPU 3", 8), SQLITE_READONLY);
}

TEST_P(EarlierVersion, IsReadAsItIsWhenItsFolderCannotBeWritten) {
    const std::string fixed = folder.file("fixed");
    fs::create_directory(fixed);
    fs::rename(sample, fixed + "/x.db");
    fs::permissions(fixed, fs::perms::owner_read | fs::perms::owner_exec);
    {
        const without_privileges reader;
        EXPECT_EQ(open_database(fixed + "/x.db"), 0);
    }
    fs::permissions(fixed, fs::perms::owner_all);
    EXPECT_EQ(content_of(fixed + "/x.db"), content_of(samples / (GetParam() + ".db")));
}

INSTANTIATE_TEST_SUITE_P(In, EarlierVersion, testing::ValuesIn(sample_names()), [](const auto& tested) {
    std::string name = tested.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

// The first programs that made databases knew nothing of the inventory service.
TEST_F(DatabaseVersion, GivesTablesToADatabaseThatWasMadeWithoutThem) {
    const std::string sample = copy_of("version-0");
    sqlite_database(sample).run("DROP TABLE InventorySequence; DROP TABLE PendingFirmware");
    EXPECT_EQ(open_database(sample), 0);
    EXPECT_EQ(columns_of(sample), columns_of(path));
}

TEST_F(DatabaseVersion, IsTheCurrentOneOfAnEmptyFile) {
    const std::string empty = folder.file("empty.db");
    std::ofstream(empty).close();
    EXPECT_EQ(open_database(empty), 0);
    EXPECT_EQ(version_of(empty), current_version());
    EXPECT_EQ(columns_of(empty), columns_of(path));
}

TEST_F(DatabaseVersion, IsLeftAloneWhenItIsTheCurrentOne) {
    const std::string before = content_of(path);
    EXPECT_EQ(open_database(path), 0);
    EXPECT_EQ(content_of(path), before);
}

TEST_F(DatabaseVersion, IsLookedAtWhileAnotherProcessWrites) {
    sqlite_database writer(path);
    writer.run("BEGIN IMMEDIATE");
    EXPECT_EQ(open_database(path), 0);
}

TEST_F(DatabaseVersion, IsRefusedWhenItIsNewer) {
    const std::string current = std::to_string(current_version());
    const std::string newer = std::to_string(current_version() + 1);
    rows("PRAGMA user_version=" + newer);
    const std::string before = content_of(path);
    auto* opened = handle.get();
    EXPECT_EQ(zeb_db_open(path.c_str(), &opened), zeb_db_is_newer);
    EXPECT_EQ(opened, nullptr);
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: cannot open inventory database '" + path +
                            "': it was made by a newer version (its schema is version " + newer + ", this one knows " +
                            current + " and earlier); use that version or another database"));
    EXPECT_EQ(content_of(path), before);
}

TEST_F(DatabaseVersion, IsKeptWithTheWholeFileWhenItCannotBeRaised) {
    const std::string other = folder.file("other.db");
    fs::copy_file(path, other);
    sqlite_database(other).run("DROP TABLE PCIs; CREATE INDEX PCIs ON Memory (Id); PRAGMA user_version=0");
    const std::string before = content_of(other);
    EXPECT_EQ(open_database(other), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: cannot open inventory database '" + other +
                                       "': there is already an index named PCIs"));
    EXPECT_EQ(content_of(other), before);
}

TEST_F(DatabaseVersion, IsNoneOfAReadOnlyFileWithoutAnInventory) {
    const std::string empty = folder.file("empty.db");
    std::ofstream(empty).close();
    fs::permissions(empty, fs::perms::owner_read);
    const without_privileges reader;
    EXPECT_EQ(open_database(empty), SQLITE_READONLY);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: cannot open inventory database '" + empty +
                                       "': attempt to write a readonly database"));
}

}  // namespace
