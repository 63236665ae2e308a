// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/subcommands/explain_test.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Explain : public explain_test {};

const std::string incomplete = cds_file(processor("CPU 1") + cds_component("pci_device_info", address("2")) +
                                        module("CPU1_DIMM_A1", "S1") + cds_component("fan_info", {}));

TEST_F(Explain, TellsWhatIsMissingAndEndsWithTheTotals) {
    const std::string shown = explain(incomplete);
    EXPECT_THAT(shown, StartsWith("No row, 1 component: its location is unknown; "));
    EXPECT_THAT(shown, Not(HasSubstr("CPU 1")));
    EXPECT_THAT(shown,
                EndsWith("\n3 components to record: 2 rows, 1 without a row; 0 settings that no column takes\n"));
}

TEST_F(Explain, WithAllTellsOfEveryComponent) {
    const std::string shown = explain(incomplete, "--all");
    EXPECT_THAT(shown, StartsWith("component\n  at      /component\n\nprocessor 'CPU 1'\n"));
    EXPECT_THAT(shown, HasSubstr("\n  row     Processor 1\n"));
    EXPECT_THAT(shown, HasSubstr("\ncomponent\n  at      /component/child_slot_group[1]/component[4]\n"));
    EXPECT_THAT(shown,
                EndsWith("\n3 components to record: 2 rows, 1 without a row; 0 settings that no column takes\n"));
}

TEST_F(Explain, ThatIsVerboseNamesTheColumnsOfEachRow) {
    EXPECT_THAT(explain(incomplete, "--all -v"), HasSubstr("\n  row     Processor 1: NodeIndex, Socket\n"));
}

TEST_F(Explain, OfOnePartTellsOfThatAlone) {
    const std::string function = "PCI function 0000:02:00.0\n  at      /component/child_slot_group[1]/component[2]\n";
    EXPECT_THAT(explain(incomplete, "--part 0000:02:00.0"), StartsWith(function));
    EXPECT_EQ(explain(incomplete, "--part 02:00.0"), explain(incomplete, "--part 0000:02:00.0"));
    EXPECT_EQ(explain(incomplete, "--part '/component/child_slot_group[1]/component[2]'"),
              explain(incomplete, "--part 0000:02:00.0"));
    EXPECT_EQ(explain(incomplete, "--part CPU1_DIMM_A1"),
              "memory device 'CPU1_DIMM_A1'\n"
              "  at      /component/child_slot_group[1]/component[3]\n"
              "  row     Memory 1\n");
    EXPECT_EQ(explain_json(incomplete, "--part CPU1_DIMM_A1")["components"].size(), 1u);
}

TEST_F(Explain, OfAPartThatIsNotThereHasNoAnswer) {
    write("server.xml", incomplete);
    const command_result result = run("zebdb-cds explain server.xml --part 7f:00.0");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "zebdb-cds: there is no component '7f:00.0' in 'server.xml'; --all lists them with their addresses, "
              "locators and paths\n");
}

TEST_F(Explain, ReadsStandardInput) {
    const std::string shown = explain(cds_file(processor("CPU 1")));
    EXPECT_EQ(output("zebdb-cds explain - <server.xml"), shown);
    EXPECT_EQ(output("cat server.xml | zebdb-cds explain -"), shown);
}

TEST_F(Explain, HasBoldHeadingsOnATerminal) {
    write("server.xml", cds_file(processor("CPU 1")));
    write("commands", "stty -onlcr\nzebdb-cds explain --part 'CPU 1' server.xml\n");
    EXPECT_THAT(output("script --quiet --return --command 'sh ./commands' /dev/null"),
                StartsWith("\033[1mprocessor 'CPU 1'\033[0m\n  at "));
}

TEST_F(Explain, FitsIntoTheWidthOfTheEnvironmentAlsoInAPipe) {
    write("server.xml", incomplete);
    EXPECT_THAT(output("COLUMNS=60 zebdb-cds explain server.xml | cat"),
                StartsWith("No row, 1 component: its location is unknown; any 'Location'\n"
                           "    but 2, or the class code 0x010802 of an NVMe drive,\n"
                           "    would have made a row\n"));
}

TEST_F(Explain, HidesSerialNumbersWhereItIsTold) {
    const std::string server = cds_file(module("A1", "SECRET"));
    EXPECT_THAT(explain(server, "--all --format json"), HasSubstr("SECRET"));
    EXPECT_THAT(explain(server, "--all --format json --redact"), Not(HasSubstr("SECRET")));
}

TEST_F(Explain, LeavesNothingBehind) {
    write("server.xml", cds_file(processor("CPU 1") + module("A1", "S1")));
    EXPECT_EQ(left_in_tmp("zebdb-cds explain server.xml"), "");
    EXPECT_THAT(names(), ElementsAre("server.xml"));
}

TEST_F(Explain, LeavesAnInventoryAsItIs) {
    write("server.xml", cds_file(processor("CPU 1")));
    write("inventory.db", "somebody's");
    EXPECT_THAT(output("ZEBDB_DATABASE=inventory.db zebdb-cds explain server.xml"), HasSubstr("1 row, "));
    EXPECT_EQ(read("inventory.db"), "somebody's");
}

TEST_F(Explain, WorksInAFolderThatMayNotBeWritten) {
    write("server.xml", cds_file(processor("CPU 1")));
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const command_result result = run_unprivileged("zebdb-cds explain server.xml");
    std::filesystem::permissions(folder(), std::filesystem::perms::owner_all);
    EXPECT_EQ(result.status, 0);
}
