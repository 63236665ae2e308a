// SPDX-License-Identifier: Apache-2.0

// Reads a JSON list of texts and prints one of what real_serial_number() makes of them.

#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "rows/serial_number.h"

int main() {
    const auto texts = nlohmann::json::parse(std::cin);
    auto serials = nlohmann::json::array();
    for (const std::string text : texts) {
        const auto serial = real_serial_number(text);
        serials.push_back(serial ? nlohmann::json(*serial) : nlohmann::json());
    }
    std::cout << serials;
}
