// SPDX-License-Identifier: Apache-2.0

/// Runs the command zebdb-cds as a user would: by a shell, in a folder of its own, without touching the machine.
#ifndef TESTS_TOOLS_SUBCOMMANDS_COMMAND_TEST_H
#define TESTS_TOOLS_SUBCOMMANDS_COMMAND_TEST_H

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

struct command_result {
    int status;  ///< as the shell tells it
    std::string out;
    std::string err;

    /// The line that the program itself adds behind the log.
    std::string last_error_line() const;
};

/// A test with an empty folder, which is removed afterwards.
class command_test : public testing::Test {
protected:
    command_test();
    ~command_test() override;

    /// Runs a shell command in the folder, with zebdb-cds on the path and /tmp private and empty. `standard_input` is a
    /// descriptor; -1 is nothing to read.
    command_result run(const std::string& shell_command, int standard_input = -1) const;

    /// The same where root has no more rights than anybody else.
    command_result run_unprivileged(const std::string& shell_command) const;

    /// The same with that library in front of all others; the assignments of variables say which of its functions fail.
    command_result run_preloaded(const char* library, const std::string& assignments,
                                 const std::string& shell_command) const;

    /// The same with a disk of `size` bytes mounted at "disk" in the folder, empty at first and gone afterwards. The
    /// status is no_disk where no file system can be mounted.
    command_result run_with_disk(std::size_t size, const std::string& shell_command) const;
    static constexpr int no_disk = 77;

    /// What a shell command adds to /tmp, a name a line. A build that stands there is there before.
    std::string left_in_tmp(const std::string& shell_command) const;

    const std::filesystem::path& folder() const { return folder_; }

    /// Writes a file in the folder.
    void write(const std::string& name, const std::string& content) const;
    std::string read(const std::string& name) const;
    /// The names of everything in the folder, sorted.
    std::vector<std::string> names() const;

    /// Runs SQL on a database in the folder, which is made when it is missing.
    void execute(const std::string& database, const std::string& sql) const;
    /// The first column of the first row.
    std::string query(const std::string& database, const std::string& sql) const;

private:
    command_result run_by(const std::vector<std::string>& runner, const std::string& shell_command,
                          int standard_input) const;

    std::filesystem::path folder_;
};

#endif
