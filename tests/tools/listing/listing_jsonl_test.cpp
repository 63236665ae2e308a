// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "rows/table.h"

TEST(ListingJsonl, HasALineForEachRow) {
    EXPECT_EQ(listing_jsonl({{&kinds::memory, {"Id", "DevLocator", "Capacity"}, {{std::int64_t{1}, "A\n1", {}}}},
                             {&kinds::bridges, {"Id"}, {}},
                             {&kinds::devices, {"Id"}, {{std::int64_t{1}}, {std::int64_t{2}}}}}),
              "{\"schema\":2,\"kind\":\"memory\",\"Id\":1,\"DevLocator\":\"A\\n1\",\"Capacity\":null}\n"
              "{\"schema\":2,\"kind\":\"devices\",\"Id\":1}\n"
              "{\"schema\":2,\"kind\":\"devices\",\"Id\":2}\n");
}

TEST(ListingJsonl, OfAnEmptyInventoryIsEmpty) {
    EXPECT_EQ(listing_jsonl({{&kinds::memory, {"Id"}, {}}}), "");
}
