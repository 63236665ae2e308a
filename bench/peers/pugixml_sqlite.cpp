// SPDX-License-Identifier: Apache-2.0

// Puts the known settings of a CDS file's components into a new SQLite database, a table a kind, and does nothing else:
// pugixml's document as it comes, a prepared statement a table, one transaction.
// usage: pugixml_sqlite COLUMNS FILE DATABASE

#include <sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <pugixml.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

struct kind {
    std::string group;
    std::string table;
    std::vector<std::string> settings;  // in the order of the columns
    std::vector<std::string> columns;
    std::unordered_map<std::string_view, int> places;  // of the settings, views of the above
    sqlite3_stmt* insert = nullptr;
};

std::vector<kind> read_kinds(const char* path) {
    std::vector<kind> kinds;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (line.front() == '#') {
            continue;
        }
        std::istringstream fields(line);
        std::string group;
        std::string table;
        std::string setting;
        std::string column;
        std::getline(fields, group, '\t');
        std::getline(fields, table, '\t');
        std::getline(fields, setting, '\t');
        std::getline(fields, column, '\t');
        if (kinds.empty() || kinds.back().group != group) {
            kinds.push_back({group, table, {}, {}, {}, nullptr});
        }
        kinds.back().settings.push_back(setting);
        kinds.back().columns.push_back(column);
    }
    for (kind& each : kinds) {
        for (const std::string& setting : each.settings) {
            each.places.emplace(setting, static_cast<int>(each.places.size()) + 1);
        }
    }
    return kinds;
}

class database {
public:
    explicit database(const char* path) { check(sqlite3_open(path, &connection_)); }
    ~database() { sqlite3_close_v2(connection_); }
    database(const database&) = delete;
    database& operator=(const database&) = delete;

    void run(const std::string& sql) { check(sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr)); }

    void prepare(kind& each) {
        std::string columns;
        std::string places;
        for (const std::string& column : each.columns) {
            columns += (columns.empty() ? "" : ", ") + column;
            places += places.empty() ? "?" : ", ?";
        }
        run("CREATE TABLE " + each.table + " (Id INTEGER PRIMARY KEY, " + columns + ")");
        const std::string sql = "INSERT INTO " + each.table + " (" + columns + ") VALUES (" + places + ")";
        check(sqlite3_prepare_v2(connection_, sql.c_str(), -1, &each.insert, nullptr));
    }

    void check(int rc) {
        if (rc != SQLITE_OK && rc != SQLITE_DONE) {
            throw std::runtime_error(sqlite3_errmsg(connection_));
        }
    }

private:
    sqlite3* connection_ = nullptr;
};

int bind(sqlite3_stmt* insert, int place, const pugi::xml_node& value) {
    const char* text = value.child_value();
    if (std::strcmp(value.name(), "hex_value") == 0) {
        return sqlite3_bind_int64(insert, place, std::strtoll(text, nullptr, 16));
    }
    if (std::strcmp(value.name(), "integer_value") == 0) {
        return sqlite3_bind_int64(insert, place, std::strtoll(text, nullptr, 10));
    }
    if (std::strcmp(value.name(), "bool_value") == 0) {
        return sqlite3_bind_int64(insert, place, std::strcmp(text, "true") == 0 ? 1 : 0);
    }
    return sqlite3_bind_text(insert, place, text, -1, SQLITE_STATIC);
}

void insert_row(database& rows, const kind& each, const pugi::xml_node& group) {
    for (pugi::xml_node setting = group.child("setting"); setting; setting = setting.next_sibling("setting")) {
        const pugi::xml_node name = setting.first_child();
        const auto place = each.places.find(name.child_value());
        if (place != each.places.end()) {
            rows.check(bind(each.insert, place->second, name.next_sibling()));
        }
    }
    rows.check(sqlite3_step(each.insert));
    sqlite3_reset(each.insert);
    sqlite3_clear_bindings(each.insert);
}

void insert_rows(database& rows, const std::vector<kind>& kinds, const pugi::xml_node& element) {
    for (const pugi::xml_node& child : element) {
        if (std::strcmp(child.name(), "setting_group") != 0) {
            insert_rows(rows, kinds, child);
            continue;
        }
        const char* name = child.child_value("name");
        for (const kind& each : kinds) {
            if (each.group == name) {
                insert_row(rows, each, child);
            }
        }
    }
}

void load(const char* columns, const char* path, const char* database_path) {
    std::vector<kind> kinds = read_kinds(columns);
    pugi::xml_document document;
    if (const pugi::xml_parse_result result = document.load_file(path); !result) {
        throw std::runtime_error(result.description());
    }
    database rows(database_path);
    rows.run("BEGIN");
    for (kind& each : kinds) {
        rows.prepare(each);
    }
    insert_rows(rows, kinds, document);
    rows.run("COMMIT");
    for (const kind& each : kinds) {
        sqlite3_finalize(each.insert);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 4) {
            throw std::runtime_error("usage: pugixml_sqlite COLUMNS FILE DATABASE");
        }
        load(argv[1], argv[2], argv[3]);
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "pugixml_sqlite: " << problem.what() << '\n';
        return 2;
    }
}
