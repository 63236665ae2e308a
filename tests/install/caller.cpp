// SPDX-License-Identifier: Apache-2.0

// Uses every kind of header that is installed and loads a file into a database in memory.

#include <inventory_service.h>
#include <sysxml.h>
#include <vonk_log_workstation.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <cstdio>
#include <sstream>

namespace {

constexpr const char* processor = R"(<component>
  <setting_group>
    <name>cpu_info</name>
    <setting><name>Core Count</name><integer_value>8</integer_value></setting>
  </setting_group>
</component>)";

}  // namespace

int main() {
    cds_parser::document document;
    std::istringstream text(processor);
    text >> document;

    _zeb_db_handle_t* database = nullptr;
    if (!text || zeb_db_open(":memory:", &database) != 0) {
        return 1;
    }
    cds_parser::parser loader;
    const bool written = loader.init() == 1 && loader.parse_component(database, &document.root) == 1;
    loader.clear();
    zeb_db_close(database);
    std::puts(written ? "the library reads and writes" : "the library does not work");
    return written && loader.last_row_id == -1 ? 0 : 1;
}
