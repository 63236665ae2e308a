// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>

#include "support/expected_column.h"
#include "support/recording_platform.h"
#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<setting> address = {
    integer("Segment Number", "1"),
    hex("Bus Number", "3B"),
    hex("Device Number", "1F"),
    integer("Function Number", "7"),
};

// What every row begins with outside any bridge and server.
const column_values address_columns = {
    {"ParentId", "uint64:18446744073709551615"},
    {"NodeIndex", "uint:4294967295"},
    {"SegNo", "uint:1"},
    {"BusNo", "uint:59"},
    {"DevNo", "uint:31"},
    {"FunNo", "uint:7"},
};

const std::vector<expected_column> bridge_columns = {
    {hex("Vendor ID", "8086"), "VendorId", "uint:32902"},
    {hex("Device ID", "2030"), "DevId", "uint:8240"},
    {hex("Revision ID", "4"), "RevId", "uint:4"},
    {hex("Class Code", "060400"), "ClsCode", "uint:394240"},
    {integer("Primary Bus Number", "5"), "PriBusNo", "uint:5"},
    {integer("Secondary Bus Number", "6"), "SndBusNo", "uint:6"},
    {integer("Subordinate Bus Number", "7"), "SubBusNo", "uint:7"},
};

class PciBridgeRecord : public testing::Test {
protected:
    PciBridgeRecord() {
        parser.init();
        platform.calls.clear();
    }

    int write_only(const std::vector<setting>& settings) {
        const std::unique_ptr<cds_parser::component> bridge(make_component("pci_bridge_info", settings));
        return parser.parse_pci_bridge(platform.handle(), bridge.get());
    }

    // A bridge with an address and these settings; one of the address's own names replaces its value.
    int write(const std::vector<setting>& settings) {
        std::vector<setting> all = address;
        all.insert(all.end(), settings.begin(), settings.end());
        return write_only(all);
    }

    int write_without(const std::string& name) {
        std::vector<setting> rest;
        for (const setting& given : address) {
            if (given.name != name) {
                rest.push_back(given);
            }
        }
        EXPECT_EQ(rest.size(), address.size() - 1);
        return write_only(rest);
    }

    // Tells the silent skipping of a bridge from everything else.
    void expect_skipped() const {
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_EQ(parser.last_row_id, -1);
    }

    recording_platform platform;
    cds_parser::parser parser;
};

}  // namespace

TEST_F(PciBridgeRecord, PutsEveryColumnInOrder) {
    parser.parent_id = 41;
    parser.node_index = 2;
    ASSERT_EQ(write(settings_of(bridge_columns)), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "PCIBridge");
    EXPECT_EQ(platform.rows[0].columns, columns_of({{"ParentId", "uint64:41"},
                                                    {"NodeIndex", "uint:2"},
                                                    {"SegNo", "uint:1"},
                                                    {"BusNo", "uint:59"},
                                                    {"DevNo", "uint:31"},
                                                    {"FunNo", "uint:7"}},
                                                   bridge_columns));
}

TEST_F(PciBridgeRecord, PutsTheAddressAlwaysAndOtherwiseOnlyTheColumnOfAnOnlySetting) {
    for (const expected_column& expected : bridge_columns) {
        SCOPED_TRACE(expected.column);
        platform.rows.clear();
        ASSERT_EQ(write({expected.given}), 1);
        ASSERT_EQ(platform.rows.size(), 1u);
        EXPECT_EQ(platform.rows[0].columns, columns_of(address_columns, {expected}));
    }
}

TEST_F(PciBridgeRecord, OfAnAddressAloneIsWritten) {
    ASSERT_EQ(write({}), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].columns, address_columns);
}

TEST_F(PciBridgeRecord, AtTheFirstAddressOfAllIsWritten) {
    ASSERT_EQ(write({integer("Bus Number", "0"), integer("Device Number", "0"), integer("Function Number", "0")}), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["BusNo"], "uint:0");
    EXPECT_EQ(platform.rows[0]["DevNo"], "uint:0");
    EXPECT_EQ(platform.rows[0]["FunNo"], "uint:0");
}

TEST_F(PciBridgeRecord, OutsideAnyBridgeHasAllBitsOfItsParentIdSet) {
    ASSERT_EQ(write({}), 1);
    EXPECT_EQ(platform.rows.at(0)["ParentId"], "uint64:" + std::to_string(0xFFFFFFFFFFFFFFFF));
}

TEST_F(PciBridgeRecord, WithoutSegmentNumberIsInSegmentZero) {
    ASSERT_EQ(write_without("Segment Number"), 1);
    EXPECT_EQ(platform.rows.at(0)["SegNo"], "uint:0");
}

TEST_F(PciBridgeRecord, WithANegativeSegmentNumberIsWritten) {
    ASSERT_EQ(write({integer("Segment Number", "-2")}), 1);
    EXPECT_EQ(platform.rows.at(0)["SegNo"], "uint:4294967294");
}

TEST_F(PciBridgeRecord, WithoutBusNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_without("Bus Number"), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithoutDeviceNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_without("Device Number"), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithoutFunctionNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_without("Function Number"), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithABusNumberOf32OnesIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({hex("Bus Number", "0xFFFFFFFF")}), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithANegativeDeviceNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({integer("Device Number", "-1")}), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithANegativeFunctionNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({integer("Function Number", "-1")}), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithAFunctionNumberThatIsNoNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({text("Function Number", "7")}), 1);
    expect_skipped();
}

TEST_F(PciBridgeRecord, WithOnlyHighBitsSetInItsAddressIsWrittenWithTheLow32) {
    ASSERT_EQ(write({hex("Segment Number", "0x100000001"), hex("Bus Number", "0xF00000002"),
                     hex("Device Number", "0xF00000003"), hex("Function Number", "0xF00000004"),
                     hex("Class Code", "0x100060400")}),
              1);
    const recorded_row row = platform.rows.at(0);
    EXPECT_EQ(row["SegNo"], "uint:1");
    EXPECT_EQ(row["BusNo"], "uint:2");
    EXPECT_EQ(row["DevNo"], "uint:3");
    EXPECT_EQ(row["FunNo"], "uint:4");
    EXPECT_EQ(row["ClsCode"], "uint:394240");
}

TEST_F(PciBridgeRecord, TakesNonNumericValuesAsZero) {
    ASSERT_EQ(write({text("Vendor ID", "8086"), text("Segment Number", "1")}), 1);
    EXPECT_EQ(platform.rows.at(0)["VendorId"], "uint:0");
    EXPECT_EQ(platform.rows.at(0)["SegNo"], "uint:0");
}

TEST_F(PciBridgeRecord, EmptiesTheBufferPutsAndInsertsInThatOrder) {
    ASSERT_EQ(write({hex("Class Code", "060400")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint64 ParentId 18446744073709551615",
                            "zeb_db_content_put_uint NodeIndex 4294967295", "zeb_db_content_put_uint SegNo 1",
                            "zeb_db_content_put_uint BusNo 59", "zeb_db_content_put_uint DevNo 31",
                            "zeb_db_content_put_uint FunNo 7", "zeb_db_content_put_uint ClsCode 394240",
                            "zeb_db_insert PCIBridge"));
}

TEST_F(PciBridgeRecord, ReadsTheFirstOfSeveralGroups) {
    const std::unique_ptr<cds_parser::component> bridge(make_component("pci_bridge_info", address));
    bridge->add_setting_group(make_group("pci_bridge_info", {integer("Bus Number", "0")}));
    ASSERT_EQ(parser.parse_pci_bridge(platform.handle(), bridge.get()), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["BusNo"], "uint:59");
}

TEST_F(PciBridgeRecord, KeepsTheIdOfTheNewRow) {
    platform.next_row_id = 77;
    ASSERT_EQ(write({}), 1);
    EXPECT_EQ(parser.last_row_id, 77);
}

TEST_F(PciBridgeRecord, LogsAWarningWhenTheInsertFails) {
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(write({}), 0);
    EXPECT_THAT(
        platform.log,
        ElementsAre("WARNING: failed to insert PCI Bridge (seg_num=1, bus_num=59, dev_num=31, fun_num=7), rc=5"));
}

TEST_F(PciBridgeRecord, LogsTheSegmentOfAFailingBridgeAsASignedNumber) {
    platform.fail("zeb_db_insert", -5);
    EXPECT_EQ(write({hex("Segment Number", "0xFFFFFFFE")}), 0);
    EXPECT_THAT(
        platform.log,
        ElementsAre("WARNING: failed to insert PCI Bridge (seg_num=-2, bus_num=59, dev_num=31, fun_num=7), rc=-5"));
}

TEST_F(PciBridgeRecord, IsInsertedEvenIfNoColumnCanBePut) {
    platform.fail("zeb_db_content_put_uint");
    platform.fail("zeb_db_content_put_uint64");
    EXPECT_EQ(write(settings_of(bridge_columns)), 1);
    EXPECT_EQ(platform.count("zeb_db_insert"), 1u);
    EXPECT_THAT(platform.log, IsEmpty());
}

TEST_F(PciBridgeRecord, FailsSilentlyWithoutItsGroup) {
    parser.last_row_id = 9;
    cds_parser::component other(0);
    EXPECT_EQ(parser.parse_pci_bridge(platform.handle(), &other), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_EQ(parser.last_row_id, 9);
}
