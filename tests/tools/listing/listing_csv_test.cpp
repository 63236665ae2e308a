// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/listing/listing_test.h"

using testing::HasSubstr;

class ListingCsv : public listing_test {};

TEST_F(ListingCsv, HasAHeaderAndALineARow) {
    EXPECT_EQ(
        listing_csv(only(kinds::bridges)),
        "Id,ParentId,NodeIndex,SegNo,BusNo,DevNo,FunNo,VendorId,DevId,RevId,ClsCode,PriBusNo,SndBusNo,SubBusNo\r\n"
        "1,,1,0,0,28,0,32902,41360,249,394240,0,58,63\r\n"
        "2,1,1,0,58,2,1,,,,,,,\r\n");
}

TEST_F(ListingCsv, QuotesWhatWouldEndAField) {
    execute(
        "UPDATE Processor SET Socket = 'a,b', Manufacturer = 'c\"d', Version = 'e' || char(13) || char(10) || 'f',"
        "SerialNo = '', AssetTag = ' g '");
    EXPECT_THAT(listing_csv(only(kinds::processors)),
                HasSubstr("\r\n1,1,\"a,b\",,,\"c\"\"d\",2259465255255039,\"e\r\nf\",,,,2100,,,\"\", g ,,16,"));
}

TEST_F(ListingCsv, QuotesATextWithOneOfTheCharactersThatEndAFieldOrALine) {
    for (const std::string character : {",", "\r", "\n"}) {
        EXPECT_EQ(listing_csv({{&kinds::memory, {"Id", "DevLocator"}, {{std::int64_t{1}, "a" + character + "b"}}}}),
                  "Id,DevLocator\r\n1,\"a" + character + "b\"\r\n");
    }
    EXPECT_EQ(listing_csv({{&kinds::memory, {"Id", "DevLocator"}, {{std::int64_t{1}, "a\"b"}}}}),
              "Id,DevLocator\r\n1,\"a\"\"b\"\r\n");
}

TEST_F(ListingCsv, QuotesTheNameOfAColumnLikeAText) {
    EXPECT_EQ(listing_csv({{&kinds::memory, {"a,b", "c"}, {}}}), "\"a,b\",c\r\n");
}

TEST_F(ListingCsv, WritesAReplacementCharacterForTextThatIsNotUtf8) {
    execute("UPDATE Processor SET Version = CAST(x'61FF62C3' AS TEXT)");
    EXPECT_THAT(listing_csv(only(kinds::processors)), HasSubstr(",a\uFFFDb\uFFFD,"));
}
