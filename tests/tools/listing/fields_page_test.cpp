// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "listing/fields_formats.h"
#include "rows/kinds.h"

// Where this fails: zebdb-cds fields --format markdown >docs/fields.md
TEST(FieldsPage, IsTheOneAmongTheDocuments) {
    std::ifstream page(SOURCE_DIR "/docs/fields.md");
    EXPECT_EQ((std::string{std::istreambuf_iterator<char>(page), {}}),
              fields_page({std::begin(kinds::all), std::end(kinds::all)}));
}
