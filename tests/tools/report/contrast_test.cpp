// SPDX-License-Identifier: Apache-2.0

// Every colour of text is read on every ground that it stands on, in light, in dark and in print.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "report/embedded_files.h"

namespace {

using palette = std::map<std::string, unsigned long>;

// One for each block of the style that sets colours: light, dark, print.
std::vector<palette> palettes() {
    static const std::regex block(":root \\{([^}]*)\\}");
    static const std::regex variable("--([a-z]+): #([0-9a-f]{6});");
    const std::string style(embedded_file("page.css"));
    std::vector<palette> all;
    for (std::sregex_iterator found(style.begin(), style.end(), block), end; found != end; ++found) {
        const std::string colours = (*found)[1];
        palette& read = all.emplace_back();
        for (std::sregex_iterator each(colours.begin(), colours.end(), variable); each != end; ++each) {
            read[(*each)[1]] = std::stoul((*each)[2], nullptr, 16);
        }
    }
    return all;
}

double linear(unsigned long channel) {
    const double value = static_cast<double>(channel & 0xFF) / 255;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// WCAG 2, relative luminance and contrast ratio.
double luminance(unsigned long colour) {
    return 0.2126 * linear(colour >> 16) + 0.7152 * linear(colour >> 8) + 0.0722 * linear(colour);
}

double contrast(unsigned long one, unsigned long other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

void expect_contrast(const std::vector<std::string>& colours, double least) {
    ASSERT_EQ(palettes().size(), 3u);
    for (const palette& read : palettes()) {
        for (const std::string& colour : colours) {
            for (const char* ground : {"page", "card", "sunken"}) {
                EXPECT_GE(contrast(read.at(colour), read.at(ground)), least) << colour << " on " << ground;
            }
        }
    }
}

}  // namespace

TEST(ColoursOfText, AreReadOnEveryGround) {
    expect_contrast({"text", "muted", "link", "added", "removed", "changed", "moved"}, 4.5);
}

TEST(ColoursOfMarks, AreSeenOnEveryGround) {
    std::vector<std::string> marks = {"warn", "storage", "network", "display", "compute"};
    expect_contrast(marks, 3);
}

TEST(ContrastOfColours, IsThatOfWcag) {
    EXPECT_NEAR(contrast(0xFFFFFF, 0x000000), 21, 0.01);
    EXPECT_NEAR(contrast(0x767676, 0xFFFFFF), 4.54, 0.01);
}
