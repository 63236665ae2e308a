// SPDX-License-Identifier: Apache-2.0

/// The documents of the samples.
#ifndef TESTS_TOOLS_EXPLANATION_SAMPLES_H
#define TESTS_TOOLS_EXPLANATION_SAMPLES_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <zebdb_cds_parser.h>

/// Calls `expectation` with the document of each sample that has one; a failure names the file.
template <class Expectation>
void expect_of_every_sample(Expectation expectation) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES_DIR)) {
        if (entry.path().extension() != ".xml") {
            continue;
        }
        SCOPED_TRACE(entry.path().string());
        cds_parser::document document;
        std::ifstream in(entry.path());
        ASSERT_TRUE(document.parse(in));
        expectation(document);
        ++files;
    }
    EXPECT_GE(files, 4);
}

#endif
