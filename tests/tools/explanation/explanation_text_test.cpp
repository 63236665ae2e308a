// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/explanation/explanation_test.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ExplanationText : public explanation_test {};

TEST_F(ExplanationText, TellsWhereEveryComponentStandsAndWhatItBecame) {
    EXPECT_EQ(explain(cds_file(server(processor("CPU 1") + module("A1", "S1") + bridge("1", {}, function("2"))))),
              "processor 'CPU 1'\n"
              "  at      /component/child_slot_group[1]/component[1]/child_slot_group[1]/component[1]\n"
              "  row     Processor 1: NodeIndex, Socket\n"
              "\n"
              "memory device 'A1'\n"
              "  at      /component/child_slot_group[1]/component[1]/child_slot_group[1]/component[2]\n"
              "  row     Memory 1: ArrayId, NodeIndex, DevLocator, SerialNo\n"
              "\n"
              "PCI bridge 0000:01:00.0\n"
              "  at      /component/child_slot_group[1]/component[1]/child_slot_group[1]/component[3]\n"
              "  row     PCIBridge 1: ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo\n"
              "\n"
              "PCI function 0000:02:00.0\n"
              "  at      /component/child_slot_group[1]/component[1]/child_slot_group[1]/component[3]/"
              "child_slot_group[1]/component[1]\n"
              "  row     PCIs 1: BridgeId, NodeIndex, DevKey, FunKey, SegNo, BusNo, DeviceNo, FunctionNo, SlotNo, "
              "Location, HardwareId, HardwareTypeId, FunType\n"
              "\n"
              "4 components to record: 4 rows, 0 without a row; 0 settings that no column takes\n");
}

TEST_F(ExplanationText, TellsWhyThereIsNoRowAndWhichSettingsAreUnused) {
    EXPECT_EQ(
        explain(cds_file(cds_component("pci_device_info", {integer("Bus Number", "-1"), integer("Device Number", "0"),
                                                           text("Color", "red"), text("Locaton", "1")}))),
        "PCI function 0000:?:00.?\n"
        "  at      /component/child_slot_group[1]/component[1]\n"
        "  no row  its address is incomplete; a bus, a device and a function number, none of them negative, would have "
        "made a row\n"
        "          the setting 'Bus Number' in pci_device_info is negative, too large or no number: "
        "integer_value '-1'\n"
        "          there is no setting 'Function Number' in pci_device_info\n"
        "  unused  'Color' in pci_device_info\n"
        "  unused  'Locaton' in pci_device_info; 'Location' may be meant\n"
        "\n"
        "1 component to record: 0 rows, 1 without a row; 2 settings that no column takes\n");
}

TEST_F(ExplanationText, TellsWhichKnownSettingsTheRecordDoesNotTake) {
    EXPECT_THAT(explain(cds_file(module("A1", "S1", {integer("Capacity", "1")}))),
                HasSubstr("  unused  'Capacity' in memory_info, which this record does not take\n"));
}

TEST_F(ExplanationText, CountsOneOfEach) {
    EXPECT_THAT(explain(cds_file(processor("CPU 1", {text("Color", "red")}))),
                EndsWith("\n1 component to record: 1 row, 0 without a row; 1 setting that no column takes\n"));
}

TEST_F(ExplanationText, CountsNothingInAFileWithoutHardware) {
    EXPECT_EQ(explain("<component/>"),
              "\n0 components to record: 0 rows, 0 without a row; 0 settings that no column takes\n");
}

TEST_F(ExplanationText, OfAComponentWithoutHardwareTellsNothing) {
    EXPECT_THAT(explain(cds_file(cds_component("fan_info", {text("Color", "red")}))), StartsWith("\n0 components "));
}

TEST_F(ExplanationText, WithAllTellsWhereComponentsWithoutHardwareStand) {
    EXPECT_EQ(explain(cds_file(server("") + cds_component("fan_info", {})), told_about::everything),
              "component\n"
              "  at      /component\n"
              "\n"
              "component 'EFI_CT_MAIN_SERVER'\n"
              "  at      /component/child_slot_group[1]/component[1]\n"
              "\n"
              "component\n"
              "  at      /component/child_slot_group[1]/component[2]\n"
              "\n"
              "0 components to record: 0 rows, 0 without a row; 0 settings that no column takes\n");
}

TEST_F(ExplanationText, TakesTheRootForAComponentLikeAnyOther) {
    EXPECT_THAT(explain(processor("CPU 1")),
                StartsWith("processor 'CPU 1'\n  at      /component\n  row     Processor"));
}

TEST_F(ExplanationText, NumbersSlotGroupsAndComponentsAsTheyStandInTheFile) {
    const std::string shown = explain(
        cds_component(cds_slots("") + cds_slots(cds_component("") + processor("A")) + cds_slots(processor("B"))));
    EXPECT_THAT(shown, HasSubstr("processor 'A'\n  at      /component/child_slot_group[2]/component[2]\n"));
    EXPECT_THAT(shown, HasSubstr("processor 'B'\n  at      /component/child_slot_group[3]/component[1]\n"));
}

TEST_F(ExplanationText, PrintsNoControlCharacterOfTheFile) {
    const std::string shown = explain(cds_file(processor("a\u009bb&#10;c", {text("d&#9;e\u0085", "f")})));
    EXPECT_THAT(shown, StartsWith("processor 'a\\x9bb\\nc'\n"));
    EXPECT_THAT(shown, HasSubstr("  unused  'd\\te\\x85' in cpu_info\n"));
}

TEST_F(ExplanationText, ShowsNothingOfTheLogOfWhatIsRecorded) {
    EXPECT_THAT(explain(cds_file(function("1"))), Not(HasSubstr("find a PCI device")));
}

TEST_F(ExplanationText, ReachesTheDeepestComponents) {
    std::string file = module("A1", "S1");
    for (int depth = 0; depth < 124; ++depth) {
        file = cds_component(cds_slots(file));
    }
    const std::string shown = explain(file);
    EXPECT_THAT(shown, StartsWith("memory device 'A1'\n"));
    EXPECT_THAT(shown, HasSubstr("  row     Memory 1: "));
}

TEST_F(ExplanationText, HasBoldHeadingsWhereControlSequencesAreUnderstood) {
    text_style style;
    style.has_control_sequences = true;
    EXPECT_THAT(components_text(explanations(cds_file(processor("CPU 1"))), row_columns::named, style),
                StartsWith("\033[1mprocessor 'CPU 1'\033[0m\n  at "));
}

TEST_F(ExplanationText, NamesTheRowAloneWhereItsColumnsAreHidden) {
    EXPECT_THAT(components_text(explanations(cds_file(processor("CPU 1"))), row_columns::hidden, {}),
                EndsWith("  row     Processor 1\n"));
}

TEST_F(ExplanationText, ShowsTheLogOfWhatIsRefusedBesideTheRule) {
    EXPECT_THAT(explain(cds_file(cds_component("pci_device_info", address("1")))),
                HasSubstr("\n          there is no setting 'Location' in pci_device_info\n"
                          "  logged  CDS PARSER: Device on slot -1 bus 1 doesn't have valid location info.\n"));
}

TEST_F(ExplanationText, TellsWhatIsStoredOfAValueThatIsNoNumber) {
    EXPECT_THAT(explain(cds_file(processor("CPU 1", {integer("Core Count", "many")}))),
                HasSubstr("  wrong   'Core Count' in cpu_info is no number: integer_value 'many' is stored as 0 in "
                          "CoreCount\n"));
}

TEST_F(ExplanationText, OfProblemsHasNothingOfWhatIsWell) {
    EXPECT_EQ(problems(cds_file(processor("CPU 1", {text("Color", "red")}))),
              "1 component to record: 1 row, 0 without a row; 1 setting that no column takes\n");
}

TEST_F(ExplanationText, OfProblemsSaysAReasonOnceForAllComponents) {
    EXPECT_EQ(problems(cds_file(cds_component("pci_device_info", address("1")) + processor("CPU 1") +
                                cds_component("pci_device_info", address("2")))),
              "No row, 2 components: its location is unknown; any 'Location' but 2, or the class code 0x010802 of an "
              "NVMe drive, would have made a row\n"
              "  there is no setting 'Location' in pci_device_info\n"
              "  * PCI function 0000:01:00.0\n"
              "    at      /component/child_slot_group[1]/component[1]\n"
              "    logged  CDS PARSER: Device on slot -1 bus 1 doesn't have valid location info.\n"
              "  * PCI function 0000:02:00.0\n"
              "    at      /component/child_slot_group[1]/component[3]\n"
              "    logged  CDS PARSER: Device on slot -1 bus 2 doesn't have valid location info.\n"
              "\n"
              "3 components to record: 1 row, 2 without a row; 0 settings that no column takes\n");
}

TEST_F(ExplanationText, OfProblemsKeepsReasonsApartWithinTheirRule) {
    EXPECT_EQ(problems(cds_file(
                  cds_component("pci_bridge_info", {integer("Bus Number", "1"), integer("Device Number", "0")}) +
                  cds_component("pci_bridge_info", {integer("Device Number", "0"), integer("Function Number", "0")}))),
              "No row, 2 components: its address is incomplete; a bus, a device and a function number, none of them "
              "negative, would have made a row\n"
              "  * PCI bridge 0000:01:00.?\n"
              "    at      /component/child_slot_group[1]/component[1]\n"
              "    there is no setting 'Function Number' in pci_bridge_info\n"
              "  * PCI bridge 0000:?:00.0\n"
              "    at      /component/child_slot_group[1]/component[2]\n"
              "    there is no setting 'Bus Number' in pci_bridge_info\n"
              "\n"
              "2 components to record: 0 rows, 2 without a row; 0 settings that no column takes\n");
}

TEST_F(ExplanationText, OfProblemsHasWhatLooksWrongBehindWhatIsMissing) {
    const std::string shown =
        problems(cds_file(processor("CPU 1", {text("Core Count", "8"), text("Serial Nmber", "1")}) +
                          cds_component("cpu_info", {text("Color", "red")})));
    EXPECT_THAT(shown,
                HasSubstr("\nLooks wrong, 1 component: 'Core Count' in cpu_info is text where a number is taken\n"
                          "  * processor 'CPU 1'\n"
                          "    at      /component/child_slot_group[1]/component[1]\n"
                          "    value   text_value '8' is stored as 0 in CoreCount\n"));
    EXPECT_THAT(shown, HasSubstr("\nLooks wrong, 1 component: no column takes 'Serial Nmber' in cpu_info; 'Serial "
                                 "Number' may be meant\n"));
    EXPECT_LT(shown.find("No row"), shown.find("Looks wrong"));
    EXPECT_THAT(shown, EndsWith("2 settings that no column takes; 1 value that looks wrong\n"));
}

TEST_F(ExplanationText, CountsValuesThatLookWrong) {
    EXPECT_THAT(problems(cds_file(processor("CPU 1", {text("Core Count", "8"), text("Voltage", "1")}))),
                EndsWith("0 settings that no column takes; 2 values that look wrong\n"));
}

TEST_F(ExplanationText, OfProblemsHasSettingsThatCannotMatter) {
    EXPECT_THAT(problems(cds_file(module("A1", "S1", {integer("Capacity", "1"), integer("DimmNum", "2")}) +
                                  module("A2", "S2", {integer("Capacity", "1")}))),
                StartsWith("No effect, 2 components: only a persistent module, which has bit 12 of 'Type Detail' and "
                           "the 'Manufacturer' Intel, has columns for some settings\n"
                           "  * memory device 'A1'\n"
                           "    at      /component/child_slot_group[1]/component[1]\n"
                           "    unused  'Capacity', 'DimmNum'\n"
                           "  * memory device 'A2'\n"
                           "    at      /component/child_slot_group[1]/component[2]\n"
                           "    unused  'Capacity'\n"));
}

TEST_F(ExplanationText, OfProblemsSaysThatASecondGroupOfANameIsNotRead) {
    EXPECT_THAT(problems(cds_file(cds_component(cds_group("memory_info", {text("Device Locator", "A1")}) +
                                                cds_group("memory_info", {text("Device Locator", "A2")})))),
                StartsWith("No effect, 1 component: of several groups of a name only the first is read\n"
                           "  * memory device 'A1'\n"
                           "    at      /component/child_slot_group[1]/component[1]\n"
                           "    unused  'Device Locator' in memory_info\n"));
}

TEST_F(ExplanationText, OfProblemsSaysThatANegativeVendorCountsAsAbsent) {
    EXPECT_THAT(
        problems(cds_file(function("1", {integer("Vendor ID", "-1")}))),
        StartsWith("No effect, 1 component: some settings count as absent where they are negative or no number\n"
                   "  * PCI function 0000:01:00.0\n"
                   "    at      /component/child_slot_group[1]/component[1]\n"
                   "    unused  'Vendor ID' in pci_device_info\n"));
}

TEST_F(ExplanationText, OfProblemsSaysThatAGroupOfAnotherKindHasNoEffect) {
    EXPECT_THAT(problems(cds_file(cds_component(cds_group("memory_info", {text("Device Locator", "A1")}) +
                                                cds_group("pci_bridge_info", address("1"))))),
                StartsWith("No effect, 1 component: another kind of record has columns for some settings\n"
                           "  * PCI bridge 0000:01:00.0\n"
                           "    at      /component/child_slot_group[1]/component[1]\n"
                           "    unused  'Device Locator' in memory_info\n"));
}

TEST_F(ExplanationText, OfProblemsSaysWhyASettingDoesNotCount) {
    EXPECT_THAT(
        problems(cds_file(function("1", {hex("Vendor ID", "1000"), hex("Device ID", "97"), hex("Class Code", "10700"),
                                         integer("Location", "0"), integer("Slot Number", "5")}))),
        StartsWith("No effect, 1 component: 'Slot Number' in pci_device_info does not count, because the slot "
                   "of storage on the board is 0\n"
                   "  * PCI function 0000:01:00.0\n"
                   "    at      /component/child_slot_group[1]/component[1]\n"
                   "    value   integer_value '5' is stored as 0 in SlotNo\n"));
}
