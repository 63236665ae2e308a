// SPDX-License-Identifier: Apache-2.0

#include "rows/redaction.h"

#include <gmock/gmock.h>

#include "rows/table.h"
#include "tools/values.h"

using testing::ElementsAre;

TEST(Redaction, HidesSerialNumbersAndAssetTags) {
    inventory_table modules{
        &kinds::memory, {"DevLocator", "SerialNo", "AssetTag"}, {{"A1", "S1", absent}, {"A2", "", "T2"}}};
    redact(modules);
    EXPECT_THAT(modules.rows[0], ElementsAre("A1", "[redacted]", absent));
    EXPECT_THAT(modules.rows[1], ElementsAre("A2", "[redacted]", "[redacted]"));
}

TEST(Redaction, LeavesATableAsItIsThatHasNeither) {
    inventory_table bridges{&kinds::bridges, {"Id"}, {{std::int64_t{1}}}};
    redact(bridges);
    EXPECT_THAT(bridges.rows, ElementsAre(ElementsAre(std::int64_t{1})));
}
