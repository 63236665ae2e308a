#include <gmock/gmock.h>

#include "support/explain_test.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Explain : public explain_test {};

TEST_F(Explain, TellsWhereEveryComponentStandsAndWhatItBecame) {
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

TEST_F(Explain, TellsWhyThereIsNoRowAndWhichSettingsAreUnused) {
    EXPECT_EQ(
        explain(cds_file(cds_component("pci_device_info", {integer("Bus Number", "-1"), integer("Device Number", "0"),
                                                           text("Color", "red"), text("Locaton", "1")}))),
        "PCI function 0000:?:00.?\n"
        "  at      /component/child_slot_group[1]/component[1]\n"
        "  no row  the setting 'Bus Number' in pci_device_info is negative, too large or no number: "
        "integer_value '-1'\n"
        "          there is no setting 'Function Number' in pci_device_info\n"
        "  unused  'Color' in pci_device_info\n"
        "  unused  'Locaton' in pci_device_info; 'Location' may be meant\n"
        "\n"
        "1 component to record: 0 rows, 1 without a row; 2 settings that no column takes\n");
}

TEST_F(Explain, TellsWhichKnownSettingsTheRecordDoesNotTake) {
    EXPECT_THAT(explain(cds_file(module("A1", "S1", {integer("Capacity", "1")}))),
                HasSubstr("  unused  'Capacity' in memory_info, which this record does not take\n"));
}

TEST_F(Explain, CountsOneOfEach) {
    EXPECT_THAT(explain(cds_file(processor("CPU 1", {text("Color", "red")}))),
                EndsWith("\n1 component to record: 1 row, 0 without a row; 1 setting that no column takes\n"));
}

TEST_F(Explain, CountsNothingInAFileWithoutHardware) {
    EXPECT_EQ(explain("<component/>"),
              "0 components to record: 0 rows, 0 without a row; 0 settings that no column takes\n");
}

TEST_F(Explain, OfAComponentWithoutHardwareTellsNothing) {
    EXPECT_THAT(explain(cds_file(cds_component("fan_info", {text("Color", "red")}))), StartsWith("0 components "));
}

TEST_F(Explain, WithAllTellsWhereComponentsWithoutHardwareStand) {
    EXPECT_EQ(explain(cds_file(server("") + cds_component("fan_info", {})), "--all"),
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

TEST_F(Explain, TakesTheRootForAComponentLikeAnyOther) {
    EXPECT_THAT(explain(processor("CPU 1")),
                StartsWith("processor 'CPU 1'\n  at      /component\n  row     Processor"));
}

TEST_F(Explain, NumbersSlotGroupsAndComponentsAsTheyStandInTheFile) {
    const std::string shown = explain(
        cds_component(cds_slots("") + cds_slots(cds_component("") + processor("A")) + cds_slots(processor("B"))));
    EXPECT_THAT(shown, HasSubstr("processor 'A'\n  at      /component/child_slot_group[2]/component[2]\n"));
    EXPECT_THAT(shown, HasSubstr("processor 'B'\n  at      /component/child_slot_group[3]/component[1]\n"));
}

TEST_F(Explain, CallsHardwareWithoutANameByItsKind) {
    EXPECT_THAT(explain(cds_file(cds_component("cpu_info", {}))), StartsWith("processor\n"));
    EXPECT_THAT(explain(cds_file(cds_component("memory_info", {}))), StartsWith("memory device\n"));
    EXPECT_THAT(explain(cds_file(cds_component("pci_bridge_info", {}))), StartsWith("PCI bridge 0000:?:?.?\n"));
    EXPECT_THAT(explain(cds_file(cds_component("pci_device_info", {}))), StartsWith("PCI function 0000:?:?.?\n"));
}

TEST_F(Explain, CallsPciHardwareByItsWholeAddress) {
    EXPECT_THAT(explain(cds_file(cds_component("pci_bridge_info",
                                               {integer("Segment Number", "1"), hex("Bus Number", "3B"),
                                                integer("Device Number", "28"), integer("Function Number", "7")}))),
                StartsWith("PCI bridge 0001:3b:1c.7\n"));
    EXPECT_THAT(explain(cds_file(function("3B", {integer("Segment Number", "-1")}))),
                StartsWith("PCI function ?:3b:00.0\n"));
}

TEST_F(Explain, ShortensALongName) {
    const std::string name = std::string(63, 'x') + "\u00e9";
    EXPECT_THAT(explain(cds_file(processor(name))), StartsWith("processor '" + name + "'\n"));
    EXPECT_THAT(explain(cds_file(processor(name + "y"))), StartsWith("processor '" + name + "...'\n"));
    EXPECT_THAT(explain(cds_component("component_struct_info", {text("comp_type", std::string(99, 'x'))}), "--all"),
                StartsWith("component '" + std::string(64, 'x') + "...'\n"));
}

TEST_F(Explain, PrintsNoControlCharacterOfTheFile) {
    const std::string shown = explain(cds_file(processor("a\u009bb&#10;c", {text("d&#9;e\u0085", "f")})));
    EXPECT_THAT(shown, StartsWith("processor 'a\\x9bb\\nc'\n"));
    EXPECT_THAT(shown, HasSubstr("  unused  'd\\te\\x85' in cpu_info\n"));
}

TEST_F(Explain, ReadsStandardInput) {
    const std::string shown = explain(cds_file(processor("CPU 1")));
    EXPECT_EQ(output("zebdb-cds explain - <server.xml"), shown);
    EXPECT_EQ(output("cat server.xml | zebdb-cds explain -"), shown);
}

TEST_F(Explain, ShowsNothingOfTheLogOfWhatIsRecorded) {
    EXPECT_THAT(explain(cds_file(function("1"))), Not(HasSubstr("find a PCI device")));
}

TEST_F(Explain, HasBoldHeadingsOnATerminal) {
    write("server.xml", cds_file(processor("CPU 1")));
    write("commands", "stty -onlcr\nzebdb-cds explain server.xml\n");
    EXPECT_THAT(output("script --quiet --return --command 'sh ./commands' /dev/null"),
                StartsWith("\033[1mprocessor 'CPU 1'\033[0m\n  at "));
}

TEST_F(Explain, LeavesNothingBehind) {
    write("server.xml", cds_file(processor("CPU 1") + module("A1", "S1")));
    EXPECT_EQ(output("zebdb-cds explain server.xml >/dev/null; ls -A /tmp"), "");
    EXPECT_THAT(names(), ElementsAre("server.xml"));
}

TEST_F(Explain, LeavesAnInventoryAsItIs) {
    write("server.xml", cds_file(processor("CPU 1")));
    write("inventory.db", "somebody's");
    EXPECT_THAT(output("ZEBDB_DATABASE=inventory.db zebdb-cds explain server.xml"), HasSubstr("Processor 1"));
    EXPECT_EQ(read("inventory.db"), "somebody's");
}

TEST_F(Explain, WorksInAFolderThatMayNotBeWritten) {
    write("server.xml", cds_file(processor("CPU 1")));
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const command_result result = run_unprivileged("zebdb-cds explain server.xml");
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_all);
    EXPECT_EQ(result.status, 0);
}

TEST_F(Explain, ReachesTheDeepestComponents) {
    std::string file = module("A1", "S1");
    for (int depth = 0; depth < 124; ++depth) {
        file = cds_component(cds_slots(file));
    }
    const std::string shown = explain(file);
    EXPECT_THAT(shown, StartsWith("memory device 'A1'\n"));
    EXPECT_THAT(shown, HasSubstr("  row     Memory 1: "));
}
