// SPDX-License-Identifier: Apache-2.0

#include "sources/memory_inventory.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "rows/table.h"
#include "support/scratch_folder.h"
#include "support/small_server.h"
#include "support/sqlite_database.h"
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

std::string content_of_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(MemoryLoader, FailsWhereItsDatabaseDoes) {
    std::optional<memory_loader> loader;
    sqlite3* connection = connection_opened_by([&loader] { loader.emplace(); });
    run_sql(connection, "DROP TABLE Memory");
    EXPECT_THAT([&loader] { load(*loader, small_server); },
                testing::ThrowsMessage<failure>(testing::HasSubstr("no such table: Memory")));
}

TEST(LoadIntoMemory, FailsWhereTheDatabaseDoes) {
    int (*const forbid_to_delete)(sqlite3*, const char**, const sqlite3_api_routines*) =
        [](sqlite3* opened, const char**, const sqlite3_api_routines*) {
            const auto judge = [](void*, int action, const char* table, const char*, const char*, const char*) {
                return action == SQLITE_DELETE && table == std::string("Memory") ? SQLITE_DENY : SQLITE_OK;
            };
            return sqlite3_set_authorizer(opened, judge, nullptr);
        };
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(forbid_to_delete));
    EXPECT_THAT([] { loaded_inventory(small_server); },
                testing::ThrowsMessage<failure>(testing::HasSubstr("not authorized")));
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(forbid_to_delete));
}

TEST(OpenInMemory, GivesTheRowsOfADatabaseFile) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database(path).run("CREATE TABLE Memory (DevLocator TEXT); INSERT INTO Memory VALUES ('A1')");
    const inventory_table memory = open_in_memory(content_of_file(path), "it").read(kinds::memory);
    ASSERT_EQ(memory.rows.size(), 1u);
    EXPECT_EQ(inventory_row(memory, 0)["DevLocator"], inventory_value("A1"));
}

TEST(OpenInMemory, OfNothingHasNoTable) {
    EXPECT_THAT([] { open_in_memory("", "it").read(kinds::memory); },
                testing::ThrowsMessage<failure>("cannot read it: no such table: Memory; it holds no inventory"));
}

TEST(OpenInMemory, TakesNoViewForATable) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database(path).run("CREATE VIEW Memory AS SELECT 1 AS Id");
    EXPECT_THAT([&path] { open_in_memory(content_of_file(path), "it").read(kinds::memory); },
                testing::ThrowsMessage<failure>(testing::HasSubstr("access to view \"Memory\" prohibited")));
}

TEST(MemoryLoader, GivesTheRowsOfADocumentAlone) {
    memory_loader loader;
    for (const std::string& text : {small_server, std::string("<component/>"), small_server}) {
        expect_same(load(loader, text), loaded_inventory(text).read_all());
    }
}
