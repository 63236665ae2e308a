// SPDX-License-Identifier: Apache-2.0

#include "setting_maker.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

namespace cds_parser {

class setting_maker::setting final : public setting_node {
public:
    using setting_node::setting_node;
    // It is made in a place of a block, by no operator new of its own.
    static void operator delete(void* memory);  // NOLINT(cert-dcl54-cpp,misc-new-delete-overloads)
};

struct setting_maker::place {
    block* owner;
    alignas(setting) std::byte memory[sizeof(setting)];
};

// Its places follow it. Each is held until its setting is deleted or the maker is gone, and one more by the maker.
struct setting_maker::block {
    std::atomic<std::size_t> held;

    place* places() { return reinterpret_cast<place*>(this + 1); }

    void release(std::size_t count) {
        if (held.fetch_sub(count, std::memory_order_acq_rel) == count) {
            ::operator delete(this);
        }
    }
};

void setting_maker::setting::operator delete(void* memory) {  // NOLINT(cert-dcl54-cpp,misc-new-delete-overloads)
    auto* from = reinterpret_cast<place*>(static_cast<std::byte*>(memory) - offsetof(place, memory));
    from->owner->release(1);
}

setting_maker::setting_maker(std::size_t room)
    : block_(new (::operator new(sizeof(block) + room * sizeof(place))) block{{room + 1}}), room_(room) {
    static_assert(sizeof(block) % alignof(place) == 0);
}

setting_maker::~setting_maker() {
    block_->release(room_ + 1);
}

setting_node* setting_maker::make(std::uint32_t level) {
    place& free = block_->places()[--room_];
    free.owner = block_;
    return ::new (free.memory) setting(level);
}

}  // namespace cds_parser
