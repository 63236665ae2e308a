// SPDX-License-Identifier: Apache-2.0

/// The settings that the reader makes.
#ifndef CDS_PARSER_SETTING_MAKER_H
#define CDS_PARSER_SETTING_MAKER_H

#include <cstddef>
#include <cstdint>

#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {

/// Makes the settings of one group in one piece of memory, which costs less than a piece for each. Whoever owns one of
/// them deletes it like any other, in whatever thread. The memory goes with the last of them, so that a setting which
/// outlives its group keeps that of all.
class setting_maker {
public:
    /// Has room for that many settings. Throws std::bad_alloc.
    explicit setting_maker(std::size_t room);
    ~setting_maker();
    setting_maker(const setting_maker&) = delete;
    setting_maker& operator=(const setting_maker&) = delete;

    /// A new setting of the caller's. To be called no more often than there is room.
    setting_node* make(std::uint32_t level);

private:
    struct place;
    struct block;
    class setting;

    block* block_;
    std::size_t room_;
};

}  // namespace cds_parser

#endif
