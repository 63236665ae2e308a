// SPDX-License-Identifier: Apache-2.0

/// What the numbers of a column stand for, as public standards have it.
#ifndef TOOLS_ROWS_ENUMERATIONS_H
#define TOOLS_ROWS_ENUMERATIONS_H

#include <cstddef>
#include <cstdint>

struct enumerated_value {
    std::uint64_t number;
    const char* name;
};

enum class number_role {
    value,  ///< a column holds one of the numbers
    bit,    ///< a column holds any of the bits with these numbers
    field,  ///< a column is put together of such numbers
};

struct enumeration {
    const char* name;
    const char* section;  ///< where it is defined
    number_role role;
    const enumerated_value* values;
    std::size_t count;
    bool is_whole;  ///< else it names only what servers are likely to have

    const enumerated_value* begin() const { return values; }
    const enumerated_value* end() const { return values + count; }
};

namespace enumerations {

extern const enumeration processor_type;
extern const enumeration processor_family;
extern const enumeration voltage;
extern const enumeration processor_status;
extern const enumeration processor_upgrade;
extern const enumeration processor_characteristics;
extern const enumeration cache_type;
extern const enumeration cache_configuration;
extern const enumeration form_factor;
extern const enumeration memory_type;
extern const enumeration type_detail;
extern const enumeration location;
extern const enumeration slot_type;
extern const enumeration slot_width;
extern const enumeration link_speed;
extern const enumeration hardware_type;
extern const enumeration function_type;

/// All of them, in the order of the columns that use them.
inline constexpr const enumeration* all[] = {
    &processor_type,   &processor_family,    &voltage,
    &processor_status, &processor_upgrade,   &processor_characteristics,
    &cache_type,       &cache_configuration, &form_factor,
    &memory_type,      &type_detail,         &location,
    &slot_type,        &slot_width,          &link_speed,
    &hardware_type,    &function_type,
};

}  // namespace enumerations

/// The name of a value; null where it has none.
const char* name_of(const enumeration& values, std::uint64_t number);

#endif
