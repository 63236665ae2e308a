// SPDX-License-Identifier: Apache-2.0

#include "sources/cds_file.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <string>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "support/scratch_file.h"

using testing::ThrowsMessage;

namespace {

void read(const std::string& name) {
    cds_parser::document document;
    read_cds_file(name, document);
}

}  // namespace

TEST(CdsFile, IsRefusedWithoutALineBeyondThoseThatAreCounted) {
    const scratch_file file("<component>" + std::string(70'000, '\n') + "<foo/></component>");
    EXPECT_THAT([&file] { read(file.path()); }, ThrowsMessage<failure>(std::string("cannot read '") + file.path() +
                                                                       "': Unexpected node 'foo' in component"));
}

TEST(CdsFile, ThatIsPackedIsRefusedWithoutALine) {
    const scratch_file file("");
    const gzFile packed = gzopen(file.path(), "wb");
    EXPECT_GT(gzputs(packed, "<component>\n<foo/></component>"), 0);
    EXPECT_EQ(gzclose(packed), Z_OK);
    EXPECT_THAT([&file] { read(file.path()); }, ThrowsMessage<failure>(std::string("cannot read '") + file.path() +
                                                                       "': Unexpected node 'foo' in component"));
}
