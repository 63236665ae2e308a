// SPDX-License-Identifier: Apache-2.0

/// Tests that compare two inventories by the command.
#ifndef TESTS_TOOLS_SUBCOMMANDS_DIFF_TEST_H
#define TESTS_TOOLS_SUBCOMMANDS_DIFF_TEST_H

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/cds_hardware.h"
#include "tools/subcommands/command_test.h"

class diff_test : public command_test {
protected:
    /// Writes the components into old.xml and new.xml.
    void write_both(const std::string& old_components, const std::string& new_components) const {
        write("old.xml", cds_file(old_components));
        write("new.xml", cds_file(new_components));
    }

    command_result diff(const std::string& arguments = "old.xml new.xml") const {
        return run("zebdb-cds diff " + arguments);
    }

    void expect_diff(int status, const std::string& out) const {
        const command_result result = diff();
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, "");
    }

    void load(const std::string& file, const std::string& database) const {
        const command_result result = run("zebdb-cds load " + file + " --database " + database);
        if (result.status != 0) {
            throw std::runtime_error(result.err);
        }
    }
};

#endif
