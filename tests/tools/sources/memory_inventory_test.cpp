// SPDX-License-Identifier: Apache-2.0

#include "sources/memory_inventory.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "rows/table.h"
#include "support/small_server.h"
#include "tools/loaded_inventory.h"

namespace {

void expect_same(const std::vector<inventory_table>& tables, const std::vector<inventory_table>& expected) {
    ASSERT_EQ(tables.size(), expected.size());
    for (std::size_t i = 0; i < tables.size(); ++i) {
        EXPECT_EQ(tables[i].kind, expected[i].kind);
        EXPECT_EQ(tables[i].columns, expected[i].columns);
        EXPECT_EQ(tables[i].rows, expected[i].rows);
    }
}

std::vector<inventory_table> load(memory_loader& loader, const std::string& cds_text) {
    cds_parser::document document;
    std::istringstream in(cds_text);
    document.parse(in);
    return loader.load(document);
}

}  // namespace

TEST(MemoryLoader, GivesTheRowsOfADocumentAlone) {
    memory_loader loader;
    for (const std::string& text : {small_server, std::string("<component/>"), small_server}) {
        expect_same(load(loader, text), loaded_inventory(text).read_all());
    }
}
