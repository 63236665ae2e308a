// SPDX-License-Identifier: Apache-2.0

/// Tests that explain what became of components.
#ifndef TESTS_TOOLS_EXPLANATION_EXPLANATION_TEST_H
#define TESTS_TOOLS_EXPLANATION_EXPLANATION_TEST_H

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>
#include <nlohmann/json.hpp>

#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "support/cds_hardware.h"

/// The path of the component with that number below the root, or below `parent`.
inline std::string path_of(int number, const std::string& parent = "/component") {
    return parent + "/child_slot_group[1]/component[" + std::to_string(number) + ']';
}

enum class told_about { hardware, everything };

class explanation_test : public testing::Test {
protected:
    using json = nlohmann::ordered_json;

    /// What is told about a file of that text.
    static std::vector<explanation> explanations(const std::string& file, told_about about = told_about::hardware) {
        cds_parser::document document;
        std::istringstream in(file);
        document.parse(in);
        return explanations_of(document, about == told_about::everything);
    }

    static std::string explain(const std::string& file, told_about about = told_about::hardware) {
        const std::vector<explanation> all = explanations(file, about);
        return components_text(all, row_columns::named, {}) + '\n' + totals_text(all);
    }

    /// What is missing of such a file, and what looks wrong.
    static std::string problems(const std::string& file) { return problems_text(explanations(file), {}); }

    static json explain_json(const std::string& file, told_about about = told_about::hardware) {
        return json::parse(explanation_json(explanations(file, about)));
    }

    /// Those of the components that stand below the root of a file.
    static json told(const std::string& components, told_about about = told_about::hardware) {
        return explain_json(cds_file(components), about)["components"];
    }

    /// That of the only one.
    static json told_of(const std::string& component) {
        const json all = told(component);
        EXPECT_EQ(all.size(), 1u);
        return all.at(0);
    }
};

#endif
