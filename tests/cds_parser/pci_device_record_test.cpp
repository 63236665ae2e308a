// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <memory>

#include "support/expected_column.h"
#include "support/recording_platform.h"
#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using changed = std::vector<setting>;

// A function that every rule leaves alone. A later setting replaces one of its settings.
const std::vector<setting> plain_function = {
    hex("Vendor ID", "0x15B3"),      hex("Class Code", "0x020000"), integer("Location", "1"),
    integer("Segment Number", "1"),  hex("Bus Number", "0x3B"),     hex("Device Number", "0x1F"),
    integer("Function Number", "7"), integer("Slot Number", "5"),
};

const std::vector<expected_column> device_columns = {
    {hex("Device ID", "0x1017"), "DeviceId", "uint:4119"},
    {integer("Revision ID", "1"), "RevId", "uint:1"},
    {hex("Subsystem Vendor ID", "0x1590"), "SubVendorId", "uint:5520"},
    {hex("Subsystem ID", "0x0263"), "SubDeviceId", "uint:611"},
    {text("Slot Designation", "PCI-E Slot 5"), "SlotDesignation", "text:PCI-E Slot 5"},
    {integer("Slot Type", "2"), "SlotType", "uint:2"},
    {integer("Slot Data Bus Width", "3"), "SlotDataBusWidth", "uint:3"},
    {integer("Hotplug", "4"), "Hotplug", "uint:4"},
    {integer("PCI Type", "5"), "PCIType", "uint:5"},
    {integer("Blade Slot Port", "6"), "BladeSlotPort", "uint:6"},
    {integer("Negotiated Link Width", "7"), "LanesInUse", "uint:7"},
    {integer("Maximum Link Width", "8"), "MaxLanes", "uint:8"},
    {integer("Max Link Speed", "9"), "MaxPCIeType", "uint:9"},
    {integer("Current Link Speed", "10"), "PCIeType", "uint:10"},
};

const std::vector<setting> on_board_controller = {
    hex("Vendor ID", "0x1000"),
    hex("Device ID", "0x0097"),
    hex("Class Code", "0x010700"),
    integer("Location", "0"),
};

const std::vector<setting> flex_140 = {
    hex("Vendor ID", "0x8086"),
    hex("Device ID", "0x56C1"),
    hex("Class Code", "0x038000"),
};

const std::vector<setting> misreported_accelerator = {
    hex("Vendor ID", "0x1414"),           hex("Device ID", "0xB204"),   hex("Class Code", "0xFF0000"),
    hex("Subsystem Vendor ID", "0x1414"), hex("Subsystem ID", "0x400"),
};

const std::vector<setting> misreported_raid = {
    hex("Vendor ID", "0x9005"),
    hex("Device ID", "0x28F"),
    hex("Class Code", "0x010700"),
    hex("Subsystem ID", "0x0500"),
};

std::vector<setting> operator+(std::vector<setting> settings, const std::vector<setting>& more) {
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

std::vector<setting> without(std::vector<setting> settings, const std::string& name) {
    const auto rest =
        std::remove_if(settings.begin(), settings.end(), [&name](const setting& given) { return given.name == name; });
    EXPECT_NE(rest, settings.end()) << "there was no setting \"" << name << '"';
    settings.erase(rest, settings.end());
    return settings;
}

class PciDeviceRecord : public testing::Test {
protected:
    PciDeviceRecord() {
        parser.init();
        platform.calls.clear();
    }

    int write_only(const std::vector<setting>& settings) {
        const std::unique_ptr<cds_parser::component> device(make_component("pci_device_info", settings));
        return parser.parse_pci_device(platform.handle(), device.get());
    }

    // The plain function with these settings changed or added.
    int write(const std::vector<setting>& changes) { return write_only(plain_function + changes); }

    // The only row when a function with these settings is written.
    recorded_row row_only(const std::vector<setting>& settings) {
        EXPECT_EQ(write_only(settings), 1);
        EXPECT_EQ(platform.rows.size(), 1u);
        return platform.rows.at(0);
    }

    recorded_row row(const std::vector<setting>& changes) { return row_only(plain_function + changes); }

    // Tells the silent skipping of a function from everything else.
    void expect_skipped_silently() const {
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_EQ(parser.last_row_id, -1);
    }

    recording_platform platform;
    cds_parser::parser parser;
};

}  // namespace

// Columns

TEST_F(PciDeviceRecord, PutsEveryColumnInOrder) {
    parser.parent_id = 41;
    parser.node_index = 2;
    ASSERT_EQ(write(settings_of(device_columns)), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0].table, "PCIs");
    column_values expected = columns_of({{"BridgeId", "uint64:41"},
                                         {"NodeIndex", "uint:2"},
                                         {"DevKey", "uint:33619973"},
                                         {"FunKey", "uint:20651783"},
                                         {"SegNo", "uint:1"},
                                         {"BusNo", "uint:59"},
                                         {"DeviceNo", "uint:31"},
                                         {"FunctionNo", "uint:7"},
                                         {"SlotNo", "uint:5"},
                                         {"Location", "uint:1"},
                                         {"VendorId", "uint:5555"},
                                         {"ClsCode", "uint:131072"}},
                                        device_columns);
    expected.emplace_back("HardwareId", "uint:20651783");
    expected.emplace_back("HardwareTypeId", "uint:3");
    expected.emplace_back("FunType", "uint:1");
    EXPECT_EQ(platform.rows[0].columns, expected);
}

TEST_F(PciDeviceRecord, PutsTheOtherColumnsAlwaysAndOnlyTheColumnOfAnOnlySetting) {
    for (const expected_column& expected : device_columns) {
        SCOPED_TRACE(expected.column);
        platform.rows.clear();
        const recorded_row written = row({expected.given});
        EXPECT_THAT(written.column_names(),
                    ElementsAre("BridgeId", "NodeIndex", "DevKey", "FunKey", "SegNo", "BusNo", "DeviceNo", "FunctionNo",
                                "SlotNo", "Location", "VendorId", "ClsCode", expected.column, "HardwareId",
                                "HardwareTypeId", "FunType"));
        EXPECT_EQ(written[expected.column], expected.value);
    }
}

TEST_F(PciDeviceRecord, WithoutVendorAndClassCodeGetsNeitherColumnAndTheCatchAllTypes) {
    const recorded_row written = row_only(without(without(plain_function, "Vendor ID"), "Class Code"));
    EXPECT_EQ(written["VendorId"], "absent");
    EXPECT_EQ(written["ClsCode"], "absent");
    EXPECT_EQ(written["HardwareTypeId"], "uint:3");
    EXPECT_EQ(written["FunType"], "uint:7");
}

TEST_F(PciDeviceRecord, WithANegativeVendorAndClassCodeGetsNeitherColumn) {
    const recorded_row written = row({hex("Vendor ID", "0xFFFFFFFF"), hex("Class Code", "0x80000000")});
    EXPECT_EQ(written["VendorId"], "absent");
    EXPECT_EQ(written["ClsCode"], "absent");
}

TEST_F(PciDeviceRecord, WithVendorAndClassCodeZeroGetsBothColumns) {
    const recorded_row written = row({integer("Vendor ID", "0"), integer("Class Code", "0")});
    EXPECT_EQ(written["VendorId"], "uint:0");
    EXPECT_EQ(written["ClsCode"], "uint:0");
}

TEST_F(PciDeviceRecord, TakesNonNumericValuesOfItsOptionalColumnsAsZero) {
    const recorded_row written = row({text("Device ID", "0x1017"), text("Slot Type", "2")});
    EXPECT_EQ(written["DeviceId"], "uint:0");
    EXPECT_EQ(written["SlotType"], "uint:0");
}

TEST_F(PciDeviceRecord, KeepsTheLow32BitsOfEveryNumber) {
    const recorded_row written = row({hex("Bus Number", "0xF0000003B"), hex("Slot Number", "0x100000005"),
                                      hex("Class Code", "0x100020000"), hex("Device ID", "0x100001017")});
    EXPECT_EQ(written["BusNo"], "uint:59");
    EXPECT_EQ(written["SlotNo"], "uint:5");
    EXPECT_EQ(written["ClsCode"], "uint:131072");
    EXPECT_EQ(written["DeviceId"], "uint:4119");
}

TEST_F(PciDeviceRecord, OutsideAnyBridgeAndServerHasAllBitsOfBothSet) {
    const recorded_row written = row({});
    EXPECT_EQ(written["BridgeId"], "uint64:18446744073709551615");
    EXPECT_EQ(written["NodeIndex"], "uint:4294967295");
}

// Address

TEST_F(PciDeviceRecord, WithoutBusNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_only(without(plain_function, "Bus Number")), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithoutDeviceNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_only(without(plain_function, "Device Number")), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithoutFunctionNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_only(without(plain_function, "Function Number")), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithABusNumberOf32OnesIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({hex("Bus Number", "0xFFFFFFFF")}), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithANegativeDeviceNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({integer("Device Number", "-1")}), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithANegativeFunctionNumberIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write({integer("Function Number", "-1")}), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, WithNeitherAddressNorLocationIsSkippedSilently) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_only(without(without(plain_function, "Bus Number"), "Location")), 1);
    expect_skipped_silently();
}

TEST_F(PciDeviceRecord, AtTheFirstAddressOfAllIsWritten) {
    const recorded_row written =
        row({integer("Bus Number", "0"), integer("Device Number", "0"), integer("Function Number", "0")});
    EXPECT_EQ(written["BusNo"], "uint:0");
    EXPECT_EQ(written["DeviceNo"], "uint:0");
    EXPECT_EQ(written["FunctionNo"], "uint:0");
}

TEST_F(PciDeviceRecord, WithoutSegmentNumberIsInSegmentZero) {
    const recorded_row written = row_only(without(plain_function, "Segment Number"));
    EXPECT_EQ(written["SegNo"], "uint:0");
    EXPECT_EQ(written["FunKey"], "uint:" + std::to_string(0x003B1F07));
}

// Location

TEST_F(PciDeviceRecord, WithoutLocationIsSkippedWithAWarning) {
    parser.last_row_id = 9;
    EXPECT_EQ(write_only(without(plain_function, "Location")), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
    EXPECT_EQ(parser.last_row_id, 9);
}

TEST_F(PciDeviceRecord, WithTheUnknownLocationIsSkippedWithAWarning) {
    EXPECT_EQ(write({integer("Location", "2")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
}

TEST_F(PciDeviceRecord, WithNeitherLocationNorSlotIsSkippedWithAWarningOfSlotMinusOne) {
    EXPECT_EQ(write_only(without(without(plain_function, "Location"), "Slot Number")), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot -1 bus 59 doesn't have valid location info."));
}

TEST_F(PciDeviceRecord, OfNvmExpressWithoutLocationIsWrittenWithTheUnknownLocation) {
    const recorded_row written = row_only(without(plain_function, "Location") + changed{hex("Class Code", "0x010802")});
    EXPECT_EQ(written["Location"], "uint:2");
}

TEST_F(PciDeviceRecord, OfAnotherNonVolatileMemoryInterfaceWithoutLocationIsSkippedWithAWarning) {
    EXPECT_EQ(write({integer("Location", "2"), hex("Class Code", "0x010801")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
}

TEST_F(PciDeviceRecord, AtAnyOtherLocationIsWritten) {
    for (const std::string location : {"0", "1", "3", "255", "-1"}) {
        SCOPED_TRACE(location);
        platform.rows.clear();
        EXPECT_EQ(write({integer("Location", location)}), 1);
        ASSERT_EQ(platform.rows.size(), 1u);
        EXPECT_EQ(platform.rows[0]["Location"],
                  "uint:" + std::to_string(static_cast<std::uint32_t>(std::stoll(location))));
        EXPECT_EQ(platform.rows[0]["SlotNo"], "uint:5");
    }
}

// On-board storage

TEST_F(PciDeviceRecord, OfAnOnBoardStorageControllerIsWrittenWithSlotZeroInColumnAndKey) {
    parser.node_index = 2;
    const recorded_row written = row(on_board_controller);
    EXPECT_EQ(written["SlotNo"], "uint:0");
    EXPECT_EQ(written["DevKey"], "uint:" + std::to_string(0x02000000));
    EXPECT_EQ(written["Location"], "uint:0");
    EXPECT_THAT(platform.log, ElementsAre("INFO: CDS PARSER: find a PCI device, slot=0, bus=59, funNo=7"));
}

TEST_F(PciDeviceRecord, OfTheStorageMakersSwitchKeepsItsSlot) {
    parser.node_index = 2;
    const recorded_row written = row(on_board_controller + changed{hex("Device ID", "0xB2")});
    EXPECT_EQ(written["SlotNo"], "uint:5");
    EXPECT_EQ(written["DevKey"], "uint:" + std::to_string(0x02000005));
}

TEST_F(PciDeviceRecord, OfTheStorageMakersSwitchWithoutLocationIsSkippedWithAWarning) {
    EXPECT_EQ(write(on_board_controller + changed{hex("Device ID", "0xB2"), integer("Location", "2")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
}

TEST_F(PciDeviceRecord, OfTheStorageMakerWithoutDeviceIdIsOnBoardStorage) {
    EXPECT_EQ(row(without(on_board_controller, "Device ID"))["SlotNo"], "uint:0");
}

TEST_F(PciDeviceRecord, OfAnyMassStorageOfTheStorageMakerIsOnBoardStorage) {
    EXPECT_EQ(row(on_board_controller + changed{hex("Class Code", "0x01FFFF")})["SlotNo"], "uint:0");
}

TEST_F(PciDeviceRecord, OfTheStorageMakerThatIsNoStorageKeepsItsSlot) {
    EXPECT_EQ(row(on_board_controller + changed{hex("Class Code", "0x088000")})["SlotNo"], "uint:5");
}

TEST_F(PciDeviceRecord, OfAnotherMakersStorageAtLocationZeroKeepsItsSlot) {
    EXPECT_EQ(row(on_board_controller + changed{hex("Vendor ID", "0x9005")})["SlotNo"], "uint:5");
}

TEST_F(PciDeviceRecord, OfAStorageControllerInASlotKeepsItsSlot) {
    EXPECT_EQ(row(on_board_controller + changed{integer("Location", "1")})["SlotNo"], "uint:5");
}

TEST_F(PciDeviceRecord, OfAStorageControllerWithoutLocationIsSkippedWithAWarningOfItsSlot) {
    EXPECT_EQ(write_only(without(plain_function, "Location") + without(on_board_controller, "Location")), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
}

// Corrected class codes

TEST_F(PciDeviceRecord, OfTheMisreportedAcceleratorIsAProcessingAccelerator) {
    const recorded_row written = row(misreported_accelerator);
    EXPECT_EQ(written["ClsCode"], "uint:" + std::to_string(0x120000));
    EXPECT_EQ(written["FunType"], "uint:16");
    EXPECT_EQ(written["HardwareTypeId"], "uint:3");
}

TEST_F(PciDeviceRecord, OfAnAlmostMisreportedAcceleratorKeepsItsClassCode) {
    for (const setting& difference :
         {hex("Vendor ID", "0x1415"), hex("Device ID", "0xB205"), hex("Subsystem Vendor ID", "0x1415"),
          hex("Subsystem ID", "0x401"), text("Subsystem ID", "0x400")}) {
        SCOPED_TRACE(difference.name + ' ' + difference.value);
        platform.rows.clear();
        EXPECT_EQ(row(misreported_accelerator + changed{difference})["ClsCode"], "uint:" + std::to_string(0xFF0000));
    }
}

TEST_F(PciDeviceRecord, OfTheAcceleratorWithoutSubsystemKeepsItsClassCode) {
    EXPECT_EQ(row(without(misreported_accelerator, "Subsystem ID"))["ClsCode"], "uint:" + std::to_string(0xFF0000));
}

TEST_F(PciDeviceRecord, OfTheAcceleratorThatReportsAnotherClassCodeKeepsIt) {
    EXPECT_EQ(row(misreported_accelerator + changed{hex("Class Code", "0x020000")})["ClsCode"],
              "uint:" + std::to_string(0x020000));
}

TEST_F(PciDeviceRecord, OfAMisreportedRaidModelIsARaidController) {
    const recorded_row written = row(misreported_raid);
    EXPECT_EQ(written["ClsCode"], "uint:" + std::to_string(0x010400));
    EXPECT_EQ(written["FunType"], "uint:0");
}

TEST_F(PciDeviceRecord, OfTheLastPlainModelOfTheRaidDeviceKeepsItsClassCode) {
    const recorded_row written = row(misreported_raid + changed{hex("Subsystem ID", "0x04FF")});
    EXPECT_EQ(written["ClsCode"], "uint:" + std::to_string(0x010700));
    EXPECT_EQ(written["FunType"], "uint:6");
}

TEST_F(PciDeviceRecord, OfThePlainModelKeepsItsClassCode) {
    const recorded_row written = row(misreported_raid + changed{hex("Subsystem ID", "0x0400")});
    EXPECT_EQ(written["ClsCode"], "uint:" + std::to_string(0x010700));
    EXPECT_EQ(written["FunType"], "uint:6");
}

TEST_F(PciDeviceRecord, OfTheRaidDeviceTakesItsModelFromTheSecondByteOfTheSubsystemAlone) {
    EXPECT_EQ(row(misreported_raid + changed{hex("Subsystem ID", "0x10400")})["ClsCode"],
              "uint:" + std::to_string(0x010700));
}

TEST_F(PciDeviceRecord, OfTheRaidDeviceWithoutSubsystemIsARaidController) {
    EXPECT_EQ(row(without(misreported_raid, "Subsystem ID"))["ClsCode"], "uint:" + std::to_string(0x010400));
}

TEST_F(PciDeviceRecord, OfTheRaidDeviceWhoseSubsystemIsNoNumberIsARaidController) {
    EXPECT_EQ(row(misreported_raid + changed{text("Subsystem ID", "0x0400")})["ClsCode"],
              "uint:" + std::to_string(0x010400));
}

TEST_F(PciDeviceRecord, OfTheRaidDeviceIsARaidControllerWhateverItReports) {
    EXPECT_EQ(row(misreported_raid + changed{hex("Class Code", "0x020000")})["ClsCode"],
              "uint:" + std::to_string(0x010400));
}

TEST_F(PciDeviceRecord, OfAnotherDeviceOfTheRaidMakerKeepsItsClassCode) {
    EXPECT_EQ(row(misreported_raid + changed{hex("Device ID", "0x290")})["ClsCode"],
              "uint:" + std::to_string(0x010700));
}

TEST_F(PciDeviceRecord, OfAnotherMakersDeviceWithTheRaidDeviceIdKeepsItsClassCode) {
    EXPECT_EQ(row(misreported_raid + changed{hex("Vendor ID", "0x9006")})["ClsCode"],
              "uint:" + std::to_string(0x010700));
}

// Keys

TEST_F(PciDeviceRecord, PacksSegmentBusDeviceAndFunctionIntoTheFunctionKey) {
    const recorded_row written = row({});
    EXPECT_EQ(written["FunKey"], "uint:" + std::to_string(0x013B1F07));
    EXPECT_EQ(written["HardwareId"], "uint:" + std::to_string(0x013B1F07));
}

TEST_F(PciDeviceRecord, GivesAWholeByteOfTheFunctionKeyToTheDeviceNumber) {
    EXPECT_EQ(row({hex("Device Number", "0xFF")})["FunKey"], "uint:" + std::to_string(0x013BFF07));
}

TEST_F(PciDeviceRecord, CutsEveryPartOfTheFunctionKeyToItsByteAndWritesItWhole) {
    const recorded_row written = row({hex("Segment Number", "0x112"), hex("Bus Number", "0x134"),
                                      hex("Device Number", "0x156"), hex("Function Number", "0x178")});
    EXPECT_EQ(written["FunKey"], "uint:" + std::to_string(0x12345678));
    EXPECT_EQ(written["SegNo"], "uint:" + std::to_string(0x112));
    EXPECT_EQ(written["BusNo"], "uint:" + std::to_string(0x134));
    EXPECT_EQ(written["DeviceNo"], "uint:" + std::to_string(0x156));
    EXPECT_EQ(written["FunctionNo"], "uint:" + std::to_string(0x178));
}

TEST_F(PciDeviceRecord, PacksNodeIndexLocationAndSlotIntoTheDeviceKey) {
    parser.node_index = 2;
    EXPECT_EQ(row({integer("Location", "4"), hex("Slot Number", "0x1234")})["DevKey"],
              "uint:" + std::to_string(0x02041234));
}

TEST_F(PciDeviceRecord, CutsTheSlotOfTheDeviceKeyTo16BitsAndWritesItWhole) {
    parser.node_index = 2;
    const recorded_row written = row({integer("Location", "4"), hex("Slot Number", "0x12345")});
    EXPECT_EQ(written["DevKey"], "uint:" + std::to_string(0x02042345));
    EXPECT_EQ(written["SlotNo"], "uint:" + std::to_string(0x12345));
}

TEST_F(PciDeviceRecord, CutsNodeIndexAndLocationOfTheDeviceKeyToTheirBytesAndWritesThemWhole) {
    parser.node_index = 0x102;
    const recorded_row written = row({hex("Location", "0x304")});
    EXPECT_EQ(written["DevKey"], "uint:" + std::to_string(0x02040005));
    EXPECT_EQ(written["NodeIndex"], "uint:" + std::to_string(0x102));
    EXPECT_EQ(written["Location"], "uint:" + std::to_string(0x304));
}

TEST_F(PciDeviceRecord, OutsideAnyServerAndSlotHasAllTheirBitsOfTheDeviceKeySet) {
    const recorded_row written = row_only(without(plain_function, "Slot Number"));
    EXPECT_EQ(written["DevKey"], "uint:" + std::to_string(0xFF01FFFF));
    EXPECT_EQ(written["SlotNo"], "uint:4294967295");
}

// Flex 140 cards

TEST_F(PciDeviceRecord, OfTheFirstFunctionOfAFlex140CardIsAnnouncedThenWritten) {
    const recorded_row written = row(flex_140);
    EXPECT_EQ(written["SlotNo"], "uint:5");
    EXPECT_THAT(platform.log,
                ElementsAre("WARNING: CDS PARSER: pcie_dev Intel GUP Flex 140 vendorid 32902 device id 22209 slot 5 "
                            "seg_num 1 bus 59 dev_num 31 fun_num 7  will be insert.",
                            "INFO: CDS PARSER: find a PCI device, slot=5, bus=59, funNo=7"));
    EXPECT_EQ(platform.calls.at(0), platform.log.at(0));
    EXPECT_EQ(platform.calls.back(), platform.log.at(1));
}

TEST_F(PciDeviceRecord, OfALaterFunctionOfAFlex140CardIsAnnouncedThenIgnored) {
    ASSERT_EQ(write(flex_140), 1);
    platform.calls.clear();
    EXPECT_EQ(write(flex_140 + changed{hex("Bus Number", "0x3C"), integer("Function Number", "6")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: pcie_dev Intel GUP Flex 140 vendorid 32902 device id 22209 slot 5 "
                            "seg_num 1 bus 60 dev_num 31 fun_num 6  will be insert.",
                            "WARNING: CDS PARSER: pcie_dev Ignore Intel GUP Flex 140 vendorid 32902 device id 22209 "
                            "slot 5 seg_num 1 bus 60 dev_num 31 fun_num 6 "));
}

TEST_F(PciDeviceRecord, OfFourFunctionsOfAFlex140CardTheFirstAloneIsWritten) {
    for (const std::string function : {"0", "1", "2", "3"}) {
        EXPECT_EQ(write(flex_140 + changed{integer("Function Number", function)}), 1);
    }
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["FunctionNo"], "uint:0");
    EXPECT_EQ(platform.log.size(), 2u + 3 * 2);
}

TEST_F(PciDeviceRecord, OfFlex140CardsInTwoSlotsBothAreWritten) {
    ASSERT_EQ(write(flex_140), 1);
    ASSERT_EQ(write(flex_140 + changed{integer("Slot Number", "6")}), 1);
    EXPECT_EQ(platform.rows.size(), 2u);
}

TEST_F(PciDeviceRecord, OfFlex140CardsAtTwoLocationsBothAreWritten) {
    ASSERT_EQ(write(flex_140), 1);
    ASSERT_EQ(write(flex_140 + changed{integer("Location", "3")}), 1);
    EXPECT_EQ(platform.rows.size(), 2u);
}

TEST_F(PciDeviceRecord, OfFlex140CardsInTwoServersBothAreWritten) {
    parser.node_index = 1;
    ASSERT_EQ(write(flex_140), 1);
    parser.node_index = 2;
    ASSERT_EQ(write(flex_140), 1);
    EXPECT_EQ(platform.rows.size(), 2u);
}

TEST_F(PciDeviceRecord, OfAFlex140CardIsKeptByItsDeviceKeyWithItsBus) {
    parser.node_index = 2;
    ASSERT_EQ(write(flex_140), 1);
    ASSERT_EQ(write(flex_140 + changed{hex("Bus Number", "0x3C")}), 1);
    EXPECT_THAT(parser.device_keys, ElementsAre(Pair(0x02010005u, 0x3B)));
}

TEST_F(PciDeviceRecord, OfAFlex140CardIsKeptEvenIfItsInsertFails) {
    platform.fail_once("zeb_db_insert", 1);
    EXPECT_EQ(write(flex_140), 0);
    EXPECT_EQ(write(flex_140), 1);
    EXPECT_EQ(platform.count("zeb_db_insert"), 1u);
}

TEST_F(PciDeviceRecord, OfAFlex140CardWithoutLocationIsSkippedUnannouncedAndNotKept) {
    EXPECT_EQ(write(flex_140 + changed{integer("Location", "2")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("WARNING: CDS PARSER: Device on slot 5 bus 59 doesn't have valid location info."));
    EXPECT_THAT(parser.device_keys, IsEmpty());
}

TEST_F(PciDeviceRecord, OfOtherDevicesAreWrittenEveryTimeAndNeverKept) {
    for (const setting& difference : {hex("Vendor ID", "0x8087"), hex("Device ID", "0x56C0")}) {
        SCOPED_TRACE(difference.name);
        platform.rows.clear();
        EXPECT_EQ(write(flex_140 + changed{difference}), 1);
        EXPECT_EQ(write(flex_140 + changed{difference}), 1);
        EXPECT_EQ(platform.rows.size(), 2u);
    }
    EXPECT_THAT(parser.device_keys, IsEmpty());
    EXPECT_EQ(platform.log,
              std::vector<std::string>(4, "INFO: CDS PARSER: find a PCI device, slot=5, bus=59, funNo=7"));
}

// Calls and faults

TEST_F(PciDeviceRecord, EmptiesTheBufferPutsInsertsAndLogsInThatOrder) {
    ASSERT_EQ(write({text("Slot Designation", "Slot 5")}), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("zeb_db_content_clear", "zeb_db_content_put_uint64 BridgeId 18446744073709551615",
                            "zeb_db_content_put_uint NodeIndex 4294967295", "zeb_db_content_put_uint DevKey 4278255621",
                            "zeb_db_content_put_uint FunKey 20651783", "zeb_db_content_put_uint SegNo 1",
                            "zeb_db_content_put_uint BusNo 59", "zeb_db_content_put_uint DeviceNo 31",
                            "zeb_db_content_put_uint FunctionNo 7", "zeb_db_content_put_uint SlotNo 5",
                            "zeb_db_content_put_uint Location 1", "zeb_db_content_put_uint VendorId 5555",
                            "zeb_db_content_put_uint ClsCode 131072", "zeb_db_content_put_text SlotDesignation Slot 5",
                            "zeb_db_content_put_uint HardwareId 20651783", "zeb_db_content_put_uint HardwareTypeId 3",
                            "zeb_db_content_put_uint FunType 1", "zeb_db_insert PCIs",
                            "INFO: CDS PARSER: find a PCI device, slot=5, bus=59, funNo=7"));
}

TEST_F(PciDeviceRecord, ReadsTheFirstOfSeveralGroups) {
    const std::unique_ptr<cds_parser::component> device(make_component("pci_device_info", plain_function));
    device->add_setting_group(make_group("pci_device_info", {integer("Bus Number", "0")}));
    ASSERT_EQ(parser.parse_pci_device(platform.handle(), device.get()), 1);
    ASSERT_EQ(platform.rows.size(), 1u);
    EXPECT_EQ(platform.rows[0]["BusNo"], "uint:59");
}

TEST_F(PciDeviceRecord, KeepsTheIdOfTheNewRow) {
    platform.next_row_id = 77;
    ASSERT_EQ(write({}), 1);
    EXPECT_EQ(parser.last_row_id, 77);
}

TEST_F(PciDeviceRecord, LogsAWarningWhenTheInsertFails) {
    platform.fail("zeb_db_insert", 5);
    EXPECT_EQ(write({}), 0);
    EXPECT_THAT(
        platform.log,
        ElementsAre("WARNING: failed to insert PCI device (seg_num=1, bus_num=59, dev_num=31, fun_num=7), rc=5"));
}

TEST_F(PciDeviceRecord, LogsTheSegmentOfAFailingFunctionAsASignedNumber) {
    platform.fail("zeb_db_insert", -5);
    EXPECT_EQ(write({hex("Segment Number", "0xFFFFFFFE")}), 0);
    EXPECT_THAT(
        platform.log,
        ElementsAre("WARNING: failed to insert PCI device (seg_num=-2, bus_num=59, dev_num=31, fun_num=7), rc=-5"));
}

TEST_F(PciDeviceRecord, IsInsertedEvenIfNoColumnCanBePut) {
    platform.fail("zeb_db_content_put_text");
    platform.fail("zeb_db_content_put_uint");
    platform.fail("zeb_db_content_put_uint64");
    EXPECT_EQ(write(settings_of(device_columns)), 1);
    EXPECT_EQ(platform.count("zeb_db_insert"), 1u);
    EXPECT_THAT(platform.log, ElementsAre("INFO: CDS PARSER: find a PCI device, slot=5, bus=59, funNo=7"));
}

TEST_F(PciDeviceRecord, FailsSilentlyWithoutItsGroup) {
    parser.last_row_id = 9;
    cds_parser::component other(0);
    EXPECT_EQ(parser.parse_pci_device(platform.handle(), &other), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_EQ(parser.last_row_id, 9);
}
