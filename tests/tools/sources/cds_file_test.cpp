// SPDX-License-Identifier: Apache-2.0

#include "sources/cds_file.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "support/scratch_file.h"

namespace {

std::string problem_with(const std::string& name) {
    cds_parser::document document;
    try {
        read_cds_file(name, document);
    } catch (const failure& problem) {
        return problem.what();
    }
    return "none";
}

}  // namespace

TEST(CdsFile, IsRefusedWithoutALineBeyondThoseThatAreCounted) {
    const scratch_file file("<component>" + std::string(70'000, '\n') + "<foo/></component>");
    EXPECT_EQ(problem_with(file.path()),
              std::string("cannot read '") + file.path() + "': Unexpected node 'foo' in component");
}

TEST(CdsFile, ThatIsPackedIsRefusedWithoutALine) {
    const scratch_file file("");
    const gzFile packed = gzopen(file.path(), "wb");
    EXPECT_GT(gzputs(packed, "<component>\n<foo/></component>"), 0);
    EXPECT_EQ(gzclose(packed), Z_OK);
    EXPECT_EQ(problem_with(file.path()),
              std::string("cannot read '") + file.path() + "': Unexpected node 'foo' in component");
}
