// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/explain_test.h"

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

TEST_F(Explain, ReadsStandardInput) {
    const std::string shown = explain(cds_file(processor("CPU 1")));
    EXPECT_EQ(output("zebdb-cds explain - <server.xml"), shown);
    EXPECT_EQ(output("cat server.xml | zebdb-cds explain -"), shown);
}

TEST_F(Explain, HasBoldHeadingsOnATerminal) {
    write("server.xml", cds_file(processor("CPU 1")));
    write("commands", "stty -onlcr\nzebdb-cds explain server.xml\n");
    EXPECT_THAT(output("script --quiet --return --command 'sh ./commands' /dev/null"),
                StartsWith("\033[1mprocessor 'CPU 1'\033[0m\n  at "));
}

TEST_F(Explain, LeavesNothingBehind) {
    write("server.xml", cds_file(processor("CPU 1") + module("A1", "S1")));
    EXPECT_EQ(left_in_tmp("zebdb-cds explain server.xml"), "");
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
