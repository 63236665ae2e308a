// SPDX-License-Identifier: Apache-2.0

/// Tests that list the rows of one inventory.
#ifndef TESTS_TOOLS_LISTING_LISTING_TEST_H
#define TESTS_TOOLS_LISTING_LISTING_TEST_H

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/library_log.h"
#include "support/small_server.h"
#include "tools/memory_rows.h"

/// The inventory is that of small_server at first.
class listing_test : public testing::Test {
protected:
    listing_test() { load(small_server); }

    /// Replaces the rows by those of a CDS file.
    void load(const std::string& cds_text) const {
        for (const inventory_kind* kind : kinds::all) {
            execute(std::string("DELETE FROM ") + kind->record.table);
        }
        const library_log log(log_display::hidden);
        cds_parser::document document;
        std::istringstream in(cds_text);
        document.parse(in);
        cds_parser::parser parser;
        parser.init();
        parser.parse_component(rows_.database.handle(), &document.root);
    }

    void execute(const std::string& sql) const { rows_.execute(sql); }

    std::vector<inventory_table> all() const { return rows_.read().read_all(); }
    std::vector<inventory_table> only(const inventory_kind& kind) const { return {rows_.read().read(kind)}; }

private:
    memory_rows rows_;
};

#endif
