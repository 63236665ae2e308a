// SPDX-License-Identifier: Apache-2.0

#include "rows/pci_address_text.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <regex>
#include <string>

namespace {

unsigned long number(const std::string& digits) {
    return std::strtoul(digits.c_str(), nullptr, 16);
}

}  // namespace

std::optional<std::string> full_pci_address(const std::string& text) {
    static const std::regex form("(?:([0-9a-fA-F]{1,8}):)?([0-9a-fA-F]{1,2}):([0-9a-fA-F]{1,2})\\.([0-9a-fA-F]{1,2})");
    std::smatch parts;
    if (!std::regex_match(text, parts, form)) {
        return std::nullopt;
    }
    char address[40];
    std::snprintf(address, sizeof address, "%04lx:%02lx:%02lx.%lx", number(parts[1]), number(parts[2]),
                  number(parts[3]), number(parts[4]));
    return address;
}
