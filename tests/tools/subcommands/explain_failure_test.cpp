// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <algorithm>

#include "support/built.h"
#include "tools/subcommands/explain_test.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ExplainFailure : public explain_test {
protected:
    void expect_refused(const std::string& arguments, const std::string& message) const {
        const command_result result = run("zebdb-cds explain " + arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.err, "zebdb-cds: " + message + "\n");
    }
};

TEST_F(ExplainFailure, OfAMissingFileTellsSo) {
    expect_refused("none.xml", "cannot read 'none.xml': No such file or directory");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ExplainFailure, OfAFolderTellsSo) {
    expect_refused(".", "cannot read '.': Is a directory");
    expect_refused("- <.", "cannot read standard input: Is a directory");
}

TEST_F(ExplainFailure, OfClosedStandardInputTellsSo) {
    expect_refused("- <&-", "cannot read standard input: it is closed");
}

TEST_F(ExplainFailure, OfADatabaseTellsThatItIsNoCdsFile) {
    write("server.xml", "<component/>");
    ASSERT_EQ(run("zebdb-cds load server.xml").status, 0);
    const command_result result = run("zebdb-cds explain inventory.db");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "zebdb-cds: cannot read 'inventory.db': it is a database and no CDS file; 'zebdb-cds show', 'tree' and "
              "'diff' take one\n");
}

TEST_F(ExplainFailure, OfContentOutOfPlaceTellsWhere) {
    write("bad.xml", cds_file("<foo/>"));
    expect_refused("bad.xml", "cannot read 'bad.xml': line 3: Unexpected node 'foo' in child_slot_group");
    expect_refused("--format json --all --redact bad.xml",
                   "cannot read 'bad.xml': line 3: Unexpected node 'foo' in child_slot_group");
}

TEST_F(ExplainFailure, LeavesNothingBehind) {
    write("bad.xml", cds_file("<foo/>"));
    EXPECT_EQ(left_in_tmp("zebdb-cds explain bad.xml"), "");
    EXPECT_THAT(names(), ElementsAre("bad.xml"));
}

TEST_F(ExplainFailure, ToWriteIsReported) {
    write("server.xml", cds_file(processor("CPU 1")));
    expect_refused("server.xml >/dev/full", "cannot write to standard output: No space left on device");
    expect_refused("server.xml --format json >/dev/full", "cannot write to standard output: No space left on device");
    expect_refused("server.xml >&-", "cannot write to standard output: Bad file descriptor");
}

TEST_F(ExplainFailure, IsNoneWhenTheReaderHasSeenEnough) {
    write("server.xml", cds_file(processor("CPU 1")));
    const command_result result = run("{ zebdb-cds explain server.xml; echo $? >status; } | true");
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(ExplainFailure, IsAUsageErrorWithoutAFileOrWithMoreThanOne) {
    expect_refused("", "FILE is required; see 'zebdb-cds explain --help'");
    expect_refused("a.xml b.xml", "the word 'b.xml' is one too many; see 'zebdb-cds explain --help'");
}

TEST_F(ExplainFailure, IsAUsageErrorWithAnotherFormatOrOption) {
    const command_result result = run("zebdb-cds explain server.xml --format csv");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, StartsWith("zebdb-cds: --format: "));
    EXPECT_THAT(result.err, EndsWith("; see 'zebdb-cds explain --help'\n"));
    expect_refused("server.xml --database x.db", "there is no option '--database'; see 'zebdb-cds explain --help'");
}

// Inserts that the database of the process refuses.
class ExplainFailedInsert : public explain_test {
protected:
    command_result explain_failing(const std::string& table, const std::string& components,
                                   const std::string& arguments = "") const {
        write("server.xml", cds_file(components));
        return run_preloaded(built::failing_insert, "FAILING_TABLE=" + table,
                             "zebdb-cds explain server.xml " + arguments);
    }

    json told_failing(const std::string& table, const std::string& components) const {
        const command_result result = explain_failing(table, components, "--format json");
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return json::parse(result.out)["components"];
    }
};

TEST_F(ExplainFailedInsert, OfABridgeIsToldWithEverythingBelowIt) {
    const command_result result = explain_failing(
        "PCIBridge", bridge("1", {}, function("2") + bridge("3", {}, function("4"))) + processor("CPU 1"), "--all");
    const std::string obstacle =
        "  no row  the loader does not look below the PCI bridge 0000:01:00.0, whose row could not be written\n\n";
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("PCI bridge 0000:01:00.0\n"
                                      "  at      " +
                                      path_of(1) +
                                      "\n"
                                      "  no row  its row could not be written\n"
                                      "  logged  failed to insert PCI Bridge (seg_num=0, bus_num=1, dev_num=0, "
                                      "fun_num=0), rc=8\n\n"
                                      "PCI function 0000:02:00.0\n"
                                      "  at      " +
                                      path_of(1, path_of(1)) + "\n" + obstacle +
                                      "PCI bridge 0000:03:00.0\n"
                                      "  at      " +
                                      path_of(2, path_of(1)) + "\n" + obstacle +
                                      "PCI function 0000:04:00.0\n"
                                      "  at      " +
                                      path_of(1, path_of(2, path_of(1))) + "\n" + obstacle + "processor 'CPU 1'\n"));
    EXPECT_THAT(result.out,
                EndsWith("5 components to record: 1 row, 4 without a row; 0 settings that no column takes\n"));
}

TEST_F(ExplainFailedInsert, OfABridgeHasResultsOfTheirOwn) {
    const json all = told_failing("PCIBridge", bridge("1", {}, function("2")));
    EXPECT_EQ(all[0]["result"], "failed");
    EXPECT_EQ(all[0]["log"], json::parse(R"([{"level": "warning", "text":
        "failed to insert PCI Bridge (seg_num=0, bus_num=1, dev_num=0, fun_num=0), rc=8"}])"));
    EXPECT_EQ(all[1]["result"], "not_reached");
}

TEST_F(ExplainFailedInsert, OfABridgeDoesNotHideThatAnotherLacksItsAddress) {
    const json all = told_failing("PCIBridge", cds_component("pci_bridge_info", {integer("Bus Number", "1")}));
    EXPECT_EQ(all[0]["result"], "incomplete");
    EXPECT_THAT(all[0]["missing_settings"], ElementsAre("Device Number", "Function Number"));
}

TEST_F(ExplainFailedInsert, OfAFunctionIsTold) {
    const json all = told_failing("PCIs", bridge("1", {}, function("2")));
    EXPECT_EQ(all[0]["result"], "recorded");
    EXPECT_EQ(all[1]["result"], "failed");
    EXPECT_THAT(all[1]["reasons"], ElementsAre("its row could not be written"));
    EXPECT_EQ(all[1]["log"][0]["text"],
              "failed to insert PCI device (seg_num=0, bus_num=2, dev_num=0, fun_num=0), rc=8");
}

TEST_F(ExplainFailedInsert, OfAProcessorIsToldByItsSocket) {
    const json all = told_failing("Processor", processor("CPU \u00e9"));
    EXPECT_EQ(all[0]["title"], "processor 'CPU \u00e9'");
    EXPECT_EQ(all[0]["result"], "failed");
    EXPECT_EQ(all[0]["log"][0]["text"], "failed to insert Processor (CPU \u00e9), rc=8");
    EXPECT_EQ(all[0]["log"][0]["level"], "error");
}

// Memory rows tell where the loader looks.
TEST_F(ExplainFailedInsert, OfMemoryLeavesNoAnswer) {
    const command_result result = explain_failing("Memory", processor("CPU 1"));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "zebdb-cds: cannot put a row into a database in memory\n");
}
