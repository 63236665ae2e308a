// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <limits>
#include <type_traits>

#include "support/comma_locale.h"
#include "support/tree_builder.h"

using cds_parser::element;
using cds_parser::setting_node;

namespace {

static_assert(std::is_base_of_v<element, setting_node> && std::is_convertible_v<setting_node*, element*>);
static_assert(std::is_constructible_v<setting_node, std::uint32_t> && !std::is_default_constructible_v<setting_node>);
static_assert(!std::is_copy_constructible_v<setting_node> && !std::is_copy_assignable_v<setting_node>);
static_assert(std::has_virtual_destructor_v<setting_node>);
static_assert(std::is_same_v<decltype(setting_node::TAG), const char*>);
static_assert(std::is_same_v<decltype(setting_node::name), std::string>);
static_assert(std::is_same_v<decltype(setting_node::value), std::string>);
static_assert(std::is_same_v<decltype(&setting_node::get_int64), long long (setting_node::*)(long long) const>);
static_assert(std::is_same_v<decltype(&setting_node::get_double), double (setting_node::*)(double) const>);

static_assert(std::is_abstract_v<element> && std::has_virtual_destructor_v<element>);
static_assert(!std::is_copy_constructible_v<element> && !std::is_copy_assignable_v<element>);
static_assert(std::is_same_v<decltype(element::level), std::uint32_t>);

static_assert(cds_parser::setting_node_type == 0);
static_assert(cds_parser::setting_group_type == 1);
static_assert(cds_parser::child_slot_group_type == 2);
static_assert(cds_parser::component_type == 3);

static_assert(setting_node::text_value == 0);
static_assert(setting_node::hex_value == 1);
static_assert(setting_node::integer_value == 2);
static_assert(setting_node::decimal_value == 3);
static_assert(setting_node::bool_value == 4);
static_assert(setting_node::date_value == 5);
static_assert(setting_node::time_value == 6);
static_assert(setting_node::guid_value == 7);
static_assert(setting_node::unknow_value == 8);

constexpr setting_node::setting_value_type non_numeric_types[] = {
    setting_node::text_value, setting_node::date_value,   setting_node::time_value,
    setting_node::guid_value, setting_node::unknow_value,
};

// Numbers that are no type at all.
constexpr setting_node::setting_value_type other_types[] = {
    static_cast<setting_node::setting_value_type>(9),
    static_cast<setting_node::setting_value_type>(42),
    static_cast<setting_node::setting_value_type>(std::numeric_limits<std::uint32_t>::max()),
};

constexpr long long largest = std::numeric_limits<long long>::max();
constexpr long long smallest = std::numeric_limits<long long>::min();

// The conversions of a value; a default that no value below converts to tells that it was returned.
long long to_int64(setting_node::setting_value_type type, const std::string& value, long long default_value = 77) {
    setting_node setting(0);
    setting.value = value;
    setting.value_type = type;
    return setting.get_int64(default_value);
}

double to_double(setting_node::setting_value_type type, const std::string& value, double default_value = 77.5) {
    setting_node setting(0);
    setting.value = value;
    setting.value_type = type;
    return setting.get_double(default_value);
}

}  // namespace

TEST(SettingNode, StartsUnnamedAndWithoutAValueAtItsLevel) {
    const setting_node setting(7);
    EXPECT_EQ(setting.level, 7u);
    EXPECT_EQ(setting.name, "");
    EXPECT_EQ(setting.value, "");
    EXPECT_EQ(setting.value_type, setting_node::unknow_value);
}

TEST(SettingNode, GivesTheDefaultsAsConstructed) {
    const setting_node setting(0);
    EXPECT_EQ(setting.get_int64(7), 7);
    EXPECT_EQ(setting.get_double(2.5), 2.5);
}

TEST(SettingNode, IsASettingNode) {
    const setting_node setting(0);
    EXPECT_EQ(setting.get_type(), cds_parser::setting_node_type);
}

TEST(SettingNode, IsTaggedSetting) {
    EXPECT_STREQ(setting_node::TAG, "setting");
}

TEST(MapValueType, NamesEveryType) {
    EXPECT_STREQ(setting_node::map_value_type(setting_node::text_value), "text_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::hex_value), "hex_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::integer_value), "integer_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::decimal_value), "decimal_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::bool_value), "bool_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::date_value), "date_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::time_value), "time_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::guid_value), "guid_value");
    EXPECT_STREQ(setting_node::map_value_type(setting_node::unknow_value), "unknow_value");
}

TEST(MapValueType, NamesEveryOtherNumberUnknown) {
    for (const auto type : other_types) {
        EXPECT_STREQ(setting_node::map_value_type(type), "unknow_value") << type;
    }
}

TEST(HexValue, TakesAnOptionalPrefix) {
    EXPECT_EQ(to_int64(setting_node::hex_value, "1F"), 31);
    EXPECT_EQ(to_int64(setting_node::hex_value, "0x1F"), 31);
    EXPECT_EQ(to_int64(setting_node::hex_value, "0X1f"), 31);
}

TEST(HexValue, IsHexadecimalEvenBehindALeadingZero) {
    EXPECT_EQ(to_int64(setting_node::hex_value, "010"), 16);
}

TEST(HexValue, SkipsLeadingBlanksAndTakesASign) {
    EXPECT_EQ(to_int64(setting_node::hex_value, " \t-0x10"), -16);
    EXPECT_EQ(to_int64(setting_node::hex_value, "+10"), 16);
}

TEST(HexValue, EndsAtTheFirstCharacterThatDoesNotFit) {
    EXPECT_EQ(to_int64(setting_node::hex_value, "1Fh"), 31);
    EXPECT_EQ(to_int64(setting_node::hex_value, "12 34"), 0x12);
}

TEST(HexValue, SaturatesAtTheSigned64BitLimits) {
    EXPECT_EQ(to_int64(setting_node::hex_value, "7FFFFFFFFFFFFFFF"), largest);
    EXPECT_EQ(to_int64(setting_node::hex_value, "8000000000000000"), largest);
    EXPECT_EQ(to_int64(setting_node::hex_value, "FFFFFFFFFFFFFFFF"), 9223372036854775807);
    EXPECT_EQ(to_int64(setting_node::hex_value, "-FFFFFFFFFFFFFFFF"), smallest);
}

TEST(HexValue, WithoutADigitIsZeroAndNotTheDefault) {
    EXPECT_EQ(to_int64(setting_node::hex_value, "zz"), 0);
    EXPECT_EQ(to_int64(setting_node::hex_value, ""), 0);
    EXPECT_EQ(to_double(setting_node::hex_value, "zz"), 0.0);
}

TEST(HexValue, AsADoubleIsItsInteger) {
    EXPECT_EQ(to_double(setting_node::hex_value, "0x1F"), 31.0);
    EXPECT_EQ(to_double(setting_node::hex_value, "1.8"), 1.0);
    EXPECT_EQ(to_double(setting_node::hex_value, "FFFFFFFFFFFFFFFF"), 9223372036854775808.0);
}

TEST(IntegerValue, TakesItsBaseFromItsPrefix) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "10"), 10);
    EXPECT_EQ(to_int64(setting_node::integer_value, "0x10"), 16);
    EXPECT_EQ(to_int64(setting_node::integer_value, "0X10"), 16);
    EXPECT_EQ(to_int64(setting_node::integer_value, "010"), 8);
}

TEST(IntegerValue, SkipsLeadingBlanksAndTakesASign) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "-5"), -5);
    EXPECT_EQ(to_int64(setting_node::integer_value, " +5"), 5);
    EXPECT_EQ(to_int64(setting_node::integer_value, "-0x10"), -16);
}

TEST(IntegerValue, EndsAtTheFirstCharacterThatDoesNotFit) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "2400 MHz"), 2400);
    EXPECT_EQ(to_int64(setting_node::integer_value, "12.9"), 12);
    EXPECT_EQ(to_int64(setting_node::integer_value, "078"), 7);
}

TEST(IntegerValue, KeepsAll64Bits) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "9007199254740993"), 9007199254740993);
    EXPECT_EQ(to_int64(setting_node::integer_value, "9223372036854775807"), largest);
    EXPECT_EQ(to_int64(setting_node::integer_value, "-9223372036854775808"), smallest);
}

TEST(IntegerValue, SaturatesAtTheSigned64BitLimits) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "9223372036854775808"), largest);
    EXPECT_EQ(to_int64(setting_node::integer_value, "-9223372036854775809"), smallest);
}

TEST(IntegerValue, WithoutADigitIsZeroAndNotTheDefault) {
    EXPECT_EQ(to_int64(setting_node::integer_value, "none"), 0);
    EXPECT_EQ(to_int64(setting_node::integer_value, ""), 0);
    EXPECT_EQ(to_double(setting_node::integer_value, "none"), 0.0);
}

TEST(IntegerValue, AsADoubleIsItsInteger) {
    EXPECT_EQ(to_double(setting_node::integer_value, "010"), 8.0);
    EXPECT_EQ(to_double(setting_node::integer_value, "12.9"), 12.0);
    EXPECT_EQ(to_double(setting_node::integer_value, "-5"), -5.0);
}

TEST(DecimalValue, IsADouble) {
    EXPECT_EQ(to_double(setting_node::decimal_value, "12.9"), 12.9);
    EXPECT_EQ(to_double(setting_node::decimal_value, "-3.7"), -3.7);
    EXPECT_EQ(to_double(setting_node::decimal_value, "1e3"), 1000.0);
    EXPECT_EQ(to_double(setting_node::decimal_value, " .5V"), 0.5);
}

TEST(DecimalValue, IsTheSameWhereNumbersHaveADecimalComma) {
    const comma_locale numbers;
    EXPECT_EQ(to_double(setting_node::decimal_value, "12.9"), 12.9);
    EXPECT_EQ(to_double(setting_node::decimal_value, "12,9"), 12.0);
}

TEST(DecimalValue, AsAnIntegerIsCutTowardZero) {
    EXPECT_EQ(to_int64(setting_node::decimal_value, "12.9"), 12);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "-3.7"), -3);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "-0.9"), 0);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "1e3"), 1000);
}

TEST(DecimalValue, AsAnIntegerSaturatesAtTheSigned64BitLimits) {
    EXPECT_EQ(to_int64(setting_node::decimal_value, "9223372036854775808"), largest);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "inf"), largest);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "-9223372036854775808"), smallest);
    EXPECT_EQ(to_int64(setting_node::decimal_value, "-1e300"), smallest);
}

TEST(DecimalValue, ThatIsNoNumberIsZeroAsAnInteger) {
    EXPECT_EQ(to_int64(setting_node::decimal_value, "nan"), 0);
}

TEST(DecimalValue, WithoutADigitIsZeroAndNotTheDefault) {
    EXPECT_EQ(to_int64(setting_node::decimal_value, "fast"), 0);
    EXPECT_EQ(to_int64(setting_node::decimal_value, ""), 0);
    EXPECT_EQ(to_double(setting_node::decimal_value, "fast"), 0.0);
    EXPECT_EQ(to_double(setting_node::decimal_value, ""), 0.0);
}

TEST(BoolValue, IsOneForTrueAnd1) {
    for (const char* value : {"true", "1"}) {
        EXPECT_EQ(to_int64(setting_node::bool_value, value), 1) << value;
        EXPECT_EQ(to_double(setting_node::bool_value, value), 1.0) << value;
    }
}

TEST(BoolValue, IsZeroForEveryOtherText) {
    for (const char* value : {"TRUE", "True", "yes", "false", "0", "01", "11", " true", "true ", ""}) {
        EXPECT_EQ(to_int64(setting_node::bool_value, value), 0) << value;
        EXPECT_EQ(to_double(setting_node::bool_value, value), 0.0) << value;
    }
}

TEST(NonNumericValue, GivesTheDefaultHoweverItReads) {
    for (const auto type : non_numeric_types) {
        EXPECT_EQ(to_int64(type, "123", -9), -9) << setting_node::map_value_type(type);
        EXPECT_EQ(to_double(type, "123", -9.5), -9.5) << setting_node::map_value_type(type);
    }
}

TEST(NonNumericValue, IsThatOfEveryNumberThatIsNoType) {
    for (const auto type : other_types) {
        EXPECT_EQ(to_int64(type, "123", -9), -9) << type;
        EXPECT_EQ(to_double(type, "123", -9.5), -9.5) << type;
    }
}
