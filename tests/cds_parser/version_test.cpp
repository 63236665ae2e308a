// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <zebdb_cds_parser.h>

#include <string>

TEST(Version, OfTheLibraryIsThatOfItsHeaders) {
    EXPECT_STREQ(zebdb_cds_parser_version(), ZEBDB_CDS_PARSER_VERSION_STRING);
}

TEST(Version, AsTextIsItsThreeNumbers) {
    EXPECT_EQ(ZEBDB_CDS_PARSER_VERSION_STRING, std::to_string(ZEBDB_CDS_PARSER_VERSION_MAJOR) + '.' +
                                                   std::to_string(ZEBDB_CDS_PARSER_VERSION_MINOR) + '.' +
                                                   std::to_string(ZEBDB_CDS_PARSER_VERSION_PATCH));
}

TEST(Version, AsANumberIsItsThreeNumbers) {
    EXPECT_EQ(ZEBDB_CDS_PARSER_VERSION / 1000000, ZEBDB_CDS_PARSER_VERSION_MAJOR);
    EXPECT_EQ(ZEBDB_CDS_PARSER_VERSION / 1000 % 1000, ZEBDB_CDS_PARSER_VERSION_MINOR);
    EXPECT_EQ(ZEBDB_CDS_PARSER_VERSION % 1000, ZEBDB_CDS_PARSER_VERSION_PATCH);
}
