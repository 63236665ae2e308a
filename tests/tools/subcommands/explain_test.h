// SPDX-License-Identifier: Apache-2.0

/// Tests that have the command explain what became of components.
#ifndef TESTS_TOOLS_SUBCOMMANDS_EXPLAIN_TEST_H
#define TESTS_TOOLS_SUBCOMMANDS_EXPLAIN_TEST_H

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/cds_hardware.h"
#include "tools/subcommands/command_test.h"

/// The path of the component with that number below the root, or below `parent`.
inline std::string path_of(int number, const std::string& parent = "/component") {
    return parent + "/child_slot_group[1]/component[" + std::to_string(number) + ']';
}

class explain_test : public command_test {
protected:
    using json = nlohmann::ordered_json;

    /// What is printed about a file of that text.
    std::string explain(const std::string& file, const std::string& arguments = "") const {
        write("server.xml", file);
        return output("zebdb-cds explain server.xml " + arguments);
    }

    json explain_json(const std::string& file, const std::string& arguments = "") const {
        return json::parse(explain(file, "--format json " + arguments));
    }

    /// Those of the components that stand below the root of a file.
    json told(const std::string& components, const std::string& arguments = "") const {
        return explain_json(cds_file(components), arguments)["components"];
    }

    /// That of the only one.
    json told_of(const std::string& component) const {
        const json all = told(component);
        EXPECT_EQ(all.size(), 1u);
        return all.at(0);
    }

    std::string output(const std::string& shell_command) const {
        const command_result result = run(shell_command);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }
};

#endif
