// SPDX-License-Identifier: Apache-2.0

// The tables of a workstation's inventory database and the columns that the library's record writers put.

#include <algorithm>
#include <map>

#include "cds_parser/record_columns.h"
#include "platform/database_test.h"
#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAreArray;

namespace {

using namespace cds_parser;

/// A column and the type that its table gives it.
using typed_column = std::pair<std::string, std::string>;

/// A record of a kind with every column: what they are, and the settings that they are taken from.
struct complete_record {
    const record_kind& kind;
    std::vector<typed_column> columns = {};
    std::map<std::string, setting> settings = {};

    template <std::size_t Count>
    complete_record& with(const column (&added)[Count]) {
        for (const column& each : added) {
            const bool is_text = each.type == column_type::text;
            // A column that is not for texts would take this one for a number.
            add(each.name, is_text ? "TEXT" : "INTEGER",
                is_text ? text(each.setting, "0123") : integer(each.setting, "1"));
        }
        return *this;
    }

    template <class Record, std::size_t Count>
    complete_record& with(const number_column<Record> (&added)[Count]) {
        for (const number_column<Record>& each : added) {
            add(each.name, "INTEGER", integer(each.setting, "1"));
        }
        return *this;
    }

    complete_record& where(const setting& given) {
        settings.insert_or_assign(given.name, given);
        return *this;
    }

    friend std::ostream& operator<<(std::ostream& out, const complete_record& record) {
        return out << record.kind.table;
    }

private:
    void add(const char* name, const char* type, const setting& value) {
        columns.emplace_back(name, type);
        settings.emplace(value.name, value);
    }
};

const complete_record complete_records[] = {
    complete_record{processor_record}.with(processor_columns),
    complete_record{memory_record}
        .with(memory_columns)
        .with(persistent_memory_columns)
        .where(integer("Type Detail", "0x1000"))
        .where(text("Manufacturer", "Intel")),
    complete_record{bridge_record}.with(bridge_address_columns).with(bridge_columns),
    complete_record{device_record}.with(device_place_columns).with(device_kind_columns).with(device_columns),
};

TEST(CompleteRecords, AreOneOfEachKind) {
    std::vector<const record_kind*> kinds;
    for (const complete_record& record : complete_records) {
        kinds.push_back(&record.kind);
    }
    EXPECT_THAT(kinds, UnorderedElementsAreArray(record_kinds));
}

class Schema : public DatabaseTest, public testing::WithParamInterface<complete_record> {
protected:
    std::vector<typed_column> columns() const {
        const std::string table = GetParam().kind.table;
        const auto names = rows("SELECT name FROM pragma_table_info('" + table + "')");
        const auto types = rows("SELECT type FROM pragma_table_info('" + table + "')");
        std::vector<typed_column> columns;
        std::transform(names.begin(), names.end(), types.begin(), std::back_inserter(columns),
                       [](const std::string& name, const std::string& type) { return typed_column(name, type); });
        return columns;
    }

    /// Writes the record of a component that has every setting; false when the database does not take it.
    bool write_record() {
        std::vector<setting> settings;
        for (const auto& [name, given] : GetParam().settings) {
            settings.push_back(given);
        }
        const std::unique_ptr<component> written(make_component(GetParam().kind.group, settings));
        parser writer;
        return writer.init() == 1 && writer.parse_component(handle.get(), written.get()) == 1;
    }

    /// How many rows a condition holds for.
    std::string count(const std::string& condition) const {
        return rows(std::string("SELECT count(*) FROM ") + GetParam().kind.table + " WHERE " + condition).front();
    }
};

TEST_P(Schema, HasTheColumnsOfTheRecordWithTheirTypes) {
    EXPECT_THAT(columns(), IsSupersetOf(GetParam().columns));
}

TEST_P(Schema, TakesEveryColumnThatTheWriterPuts) {
    EXPECT_TRUE(write_record());
    EXPECT_EQ(count("true"), "1");
}

TEST_P(Schema, HasNoColumnThatTheWriterDoesNotPut) {
    ASSERT_TRUE(write_record());
    std::vector<std::string> empty;
    for (const auto& [name, type] : columns()) {
        if (count(name + " IS NOT NULL") == "0") {
            empty.push_back(name);
        }
    }
    EXPECT_THAT(empty, IsEmpty());
}

TEST_P(Schema, KeepsEveryValueAsTheTypeThatItWasPutAs) {
    ASSERT_TRUE(write_record());
    std::vector<std::string> others;
    for (const auto& [name, type] : columns()) {
        if (count("typeof(" + name + ") = lower('" + type + "')") == "0") {
            others.push_back(name);
        }
    }
    EXPECT_THAT(others, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, Schema, testing::ValuesIn(complete_records),
                         [](const auto& tested) { return tested.param.kind.table; });

using SchemaOfTheDatabase = DatabaseTest;

TEST_F(SchemaOfTheDatabase, HasTheTablesOfTheRecordsAndOfTheInventoryService) {
    std::vector<std::string> tables = {"InventorySequence", "PCIAdapter", "PendingFirmware", "Source"};
    for (const record_kind* kind : record_kinds) {
        tables.emplace_back(kind->table);
    }
    EXPECT_THAT(rows("SELECT name FROM sqlite_schema WHERE type = 'table'"), UnorderedElementsAreArray(tables));
}

TEST_F(SchemaOfTheDatabase, TellsOfTheSourceByItsNameSizeDigestAndTime) {
    EXPECT_THAT(rows(R"(SELECT name, type, "notnull" FROM pragma_table_info('Source') WHERE name != 'Id')"),
                ElementsAre("Name|TEXT|1", "Bytes|INTEGER|1", "Sha256|TEXT|1", "LoadedAt|INTEGER|1"));
    EXPECT_THAT(rows("SELECT name, type FROM pragma_table_info('Source') WHERE pk = 1"), ElementsAre("Id|INTEGER"));
}

}  // namespace
