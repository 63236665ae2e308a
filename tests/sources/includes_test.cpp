// SPDX-License-Identifier: Apache-2.0

#include "sources/includes.h"

#include <gmock/gmock.h>

#include <fstream>

#include "support/scratch_folder.h"

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

/// A made-up project.
class Includes : public testing::Test {
protected:
    void write(const std::string& file, const std::string& content) const {
        const fs::path path = folder_.file(file);
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

    std::vector<std::string> problems() const { return check_includes(folder_.file("")).problems; }

private:
    scratch_folder folder_;
};

}  // namespace

TEST(IncludesOfTheProject, GoOneWay) {
    EXPECT_THAT(check_includes(SOURCE_DIR).problems, IsEmpty());
}

TEST(IncludesOfTheProject, AreReadInEveryFolder) {
    const std::vector<std::string> files = check_includes(SOURCE_DIR).files;
    for (const char* folder : {"cds_parser/", "include/", "inventory/", "platform/include/", "platform/workstation/",
                               "tools/console/", "tools/rows/", "tools/sources/", "tools/listing/", "tools/topology/",
                               "tools/difference/", "tools/change_detection/", "tools/explanation/", "tools/export/",
                               "tools/report/", "tools/subcommands/", "tools/main.cpp"}) {
        EXPECT_THAT(files, Contains(StartsWith(folder)));
    }
}

TEST_F(Includes, OfARoomBelowAreFine) {
    write("tools/console/utf8.h", "");
    write("tools/rows/table.cpp", "#include <string>\n#include \"console/utf8.h\"\n");
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(Includes, OfARoomAboveAreToldWithFileLineAndRule) {
    write("tools/rows/table.h", "");
    write("tools/console/utf8.cpp", "// text\n\n#include \"rows/table.h\"\n");
    EXPECT_THAT(problems(),
                ElementsAre(AllOf(StartsWith("tools/console/utf8.cpp:3: includes tools/rows/table.h; "),
                                  HasSubstr("tools/console/* may include only include/*, platform/include/*"))));
}

TEST_F(Includes, BetweenReportAndExportAreForbiddenBothWays) {
    write("tools/report/page.h", "#include \"export/line.h\"\n");
    write("tools/export/line.cpp", "#include \"report/page.h\"\n");
    write("tools/export/line.h", "");
    EXPECT_THAT(problems(), AllOf(Contains(StartsWith("tools/report/page.h:1: includes tools/export/line.h; ")),
                                  Contains(StartsWith("tools/export/line.cpp:1: includes tools/report/page.h; "))));
}

TEST_F(Includes, OfTheCommandByTheLibraryAreForbidden) {
    write("tools/console/utf8.h", "");
    write("cds_parser/reader.cpp", "#include \"console/utf8.h\"\n");
    EXPECT_THAT(problems(), ElementsAre(StartsWith("cds_parser/reader.cpp:1: includes tools/console/utf8.h; ")));
}

TEST_F(Includes, OfTheInventoryByTheParserAreForbidden) {
    write("inventory/function_keys.h", "");
    write("cds_parser/reader.cpp", "#include \"inventory/function_keys.h\"\n");
    EXPECT_THAT(problems(), ElementsAre(StartsWith("cds_parser/reader.cpp:1: includes inventory/function_keys.h; ")));
}

TEST_F(Includes, OfTheWorkstationByTheLibraryAreForbiddenInAngleBracketsToo) {
    write("platform/workstation/zeb_db_workstation.h", "");
    write("inventory/check.cpp", "  #  include <zeb_db_workstation.h>  // here\n");
    EXPECT_THAT(problems(),
                ElementsAre(StartsWith("inventory/check.cpp:1: includes platform/workstation/zeb_db_workstation.h; ")));
}

TEST_F(Includes, OfSQLiteByTheLibraryAreForbidden) {
    write("inventory/check.cpp", "#include <sqlite3.h>\n");
    EXPECT_THAT(problems(), ElementsAre("inventory/check.cpp:1: includes <sqlite3.h>; inventory/* must not include "
                                        "sqlite3.h"));
}

TEST_F(Includes, OfSQLiteByTheCommandAreFine) {
    write("tools/sources/inventory.cpp", "#include <sqlite3.h>\n");
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(Includes, OfWhatTheLibraryKeepsToItselfAreForbiddenToTheCommand) {
    write("cds_parser/record.h", "");
    write("cds_parser/record_columns.h", "");
    write("tools/explanation/known_settings.cpp",
          "#include \"cds_parser/record_columns.h\"\n#include \"cds_parser/record.h\"\n");
    EXPECT_THAT(problems(),
                ElementsAre(StartsWith("tools/explanation/known_settings.cpp:2: includes cds_parser/record.h; ")));
}

TEST_F(Includes, OfWhatTheWorkstationKeepsToItselfAreForbiddenToTheCommand) {
    write("platform/workstation/zeb_db_handle.h", "");
    write("tools/sources/inventory.cpp", "#include \"zeb_db_handle.h\"\n");
    EXPECT_THAT(
        problems(),
        ElementsAre(StartsWith("tools/sources/inventory.cpp:1: includes platform/workstation/zeb_db_handle.h")));
}

TEST_F(Includes, ByThePlatformOfTheLibraryAreForbidden) {
    write("include/zebdb_cds_parser.h", "");
    write("platform/include/sysxml.h", "#include <zebdb_cds_parser.h>\n");
    write("platform/workstation/sysxml.cpp", "#include <zebdb_cds_parser.h>\n#include \"sysxml.h\"\n");
    EXPECT_THAT(problems(),
                ElementsAre(StartsWith("platform/include/sysxml.h:1: includes include/zebdb_cds_parser.h; "),
                            StartsWith("platform/workstation/sysxml.cpp:1: includes include/zebdb_cds_parser.h; ")));
}

TEST_F(Includes, ThatFindNoFileAreTold) {
    write("tools/rows/table.cpp", "#include \"rows/tables.h\"\n");
    EXPECT_THAT(problems(), ElementsAre("tools/rows/table.cpp:1: includes \"rows/tables.h\", which is no file of the "
                                        "project"));
}

TEST_F(Includes, InACircleWithinARoomAreTold) {
    write("tools/rows/table.h", "");
    write("tools/rows/table.cpp", "#include \"rows/table.h\"\n\n#include \"rows/kinds.h\"\n");
    write("tools/rows/kinds.h", "#include \"rows/units.h\"\n");
    write("tools/rows/units.h", "");
    write("tools/rows/units.cpp", "#include \"rows/table.h\"\n");
    EXPECT_THAT(problems(), ElementsAre("tools/rows/table.cpp:3: includes in a circle: tools/rows/kinds, "
                                        "tools/rows/units, tools/rows/table, tools/rows/kinds"));
}

TEST_F(Includes, OfOneUnitByTwoOthersAreNoCircle) {
    write("tools/rows/kinds.h", "");
    write("tools/rows/table.h", "#include \"rows/kinds.h\"\n");
    write("tools/rows/units.h", "#include \"rows/kinds.h\"\n#include \"rows/table.h\"\n");
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(Includes, OfAFileInAnUnknownRoomHaveNoRule) {
    write("tools/attic/thing.h", "");
    write("tools/thing.cpp", "");
    EXPECT_THAT(problems(), ElementsAre("tools/attic/thing.h:1: stands in no folder whose includes have a rule",
                                        "tools/thing.cpp:1: stands in no folder whose includes have a rule"));
}
