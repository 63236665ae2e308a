// SPDX-License-Identifier: Apache-2.0

/// Where the inputs of change detection stand in a test.
#ifndef TESTS_INVENTORY_INPUT_FILES_H
#define TESTS_INVENTORY_INPUT_FILES_H

constexpr const char* first_input = "/tmp/first.xml";
constexpr const char* second_input = "/tmp/second.xml";
constexpr const char* cds_path = "/tmp/cds.xml";

#endif
