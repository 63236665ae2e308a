// SPDX-License-Identifier: Apache-2.0

#include "cds_generator.h"

#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <cstdint>
#include <map>
#include <sstream>
#include <string>

namespace {

std::string generated(unsigned servers, std::uint32_t seed, white_space between = white_space::tabs) {
    std::ostringstream out;
    generate_cds(out, servers, seed, between);
    return out.str();
}

// FNV-1a
std::uint64_t hash_of(const std::string& bytes) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    return hash;
}

/// How many setting groups of each name there are in the tree.
using group_count = std::map<std::string, unsigned>;

void count_groups(const cds_parser::component& counted, group_count& counts) {
    for (const auto& entry : counted.setting_groups) {
        ++counts[entry.first];
    }
    for (const cds_parser::child_slot_group* slots : counted.child_slot_groups) {
        for (const cds_parser::component* child : slots->components) {
            count_groups(*child, counts);
        }
    }
}

group_count groups_of(const std::string& file) {
    std::istringstream in(file);
    cds_parser::document document;
    document.parse(in);
    group_count counts;
    count_groups(document.root, counts);
    return counts;
}

}  // namespace

TEST(CdsGenerator, WritesTheSameBytesForTheSameArguments) {
    EXPECT_EQ(generated(2, 7), generated(2, 7));
}

TEST(CdsGenerator, WritesTheSameBytesOnEveryMachine) {
    EXPECT_EQ(hash_of(generated(1, 1)), 7941877152656683714U);
}

TEST(CdsGenerator, WritesOtherValuesForAnotherSeed) {
    EXPECT_NE(generated(1, 1), generated(1, 2));
}

TEST(CdsGenerator, WritesAllHardwareOfEachServer) {
    const group_count counts = groups_of(generated(3, 1));
    EXPECT_EQ(counts.at("cpu_info"), 3U * 2);
    EXPECT_EQ(counts.at("memory_info"), 3U * 24);
    EXPECT_EQ(counts.at("pci_bridge_info"), 3U * 42);
    EXPECT_EQ(counts.at("pci_device_info"), 3U * 48);
}

TEST(CdsGenerator, WritesTheSameTreeWhateverTheWhiteSpace) {
    const std::string without = generated(1, 1, white_space::none);
    EXPECT_EQ(without.find('\n'), without.size() - 1);
    EXPECT_EQ(groups_of(without), groups_of(generated(1, 1, white_space::tabs)));
    EXPECT_EQ(groups_of(without), groups_of(generated(1, 1, white_space::blanks)));
}

TEST(CdsGenerator, GrowsByTheSameAmountAServer) {
    const auto one = static_cast<double>(generated(1, 1).size());
    const auto ten = static_cast<double>(generated(10, 1).size());
    EXPECT_NEAR(ten / one, 10.0, 0.1);
}
