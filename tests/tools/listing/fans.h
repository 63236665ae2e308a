// SPDX-License-Identifier: Apache-2.0

/// A kind of row that no inventory has, with columns of every sort.
#ifndef TESTS_TOOLS_LISTING_FANS_H
#define TESTS_TOOLS_LISTING_FANS_H

#include <cstdint>
#include <optional>

#include "cds_parser/record_columns.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"

inline constexpr cds_parser::record_kind fan_record = {"fan_info", "Fan", "failed to delete fans, rc=%d"};

inline const kind_description& describe_fans() {
    static const kind_description description = {
        "fan",
        nullptr,
        {},
        {},
        {},
        {{"Name", "Name"}, {"Speed", "Speed"}, {"Serial", "Serial", alignment::right}},
        {},
        {{"Name", "what it is called", "", column_units::plain, nullptr, "the rule", "", std::nullopt},
         {"Speed", "how fast it turns", "MHz", column_units::megahertz, nullptr, "'Speed'", "it stands", std::nullopt},
         {"Serial", "", "", column_units::plain, nullptr, "", "it has none", -1},
         {"Place", "where it sits", "", column_units::plain, &enumerations::location, "'Place'", "", std::nullopt},
         {"State", "how it is", "", column_units::plain, &enumerations::processor_status, "'State'", "", std::nullopt},
         {"Can", "what it can", "", column_units::plain, &enumerations::processor_characteristics, "'Can'", "",
          std::nullopt}},
    };
    return description;
}

inline constexpr inventory_kind fans = {"fans", "Fans", fan_record, describe_fans};

#endif
