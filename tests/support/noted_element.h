// SPDX-License-Identifier: Apache-2.0

/// Elements that note their own destruction, so that tests see what is destroyed, how often and in which order.
#ifndef TESTS_SUPPORT_NOTED_ELEMENT_H
#define TESTS_SUPPORT_NOTED_ELEMENT_H

#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

using destructions = std::vector<std::string>;

/// Any class of the tree; its note comes before those of the elements that it owns.
template <class Element>
class noted : public Element {
public:
    noted(destructions& destroyed, std::string note)
        : Element(std::uint32_t{0}), destroyed_(destroyed), note_(std::move(note)) {}
    ~noted() override { destroyed_.push_back(note_); }

private:
    destructions& destroyed_;
    std::string note_;
};

/// A new setting or setting group; the caller owns it until it is added.
template <class Named>
Named* make_noted(destructions& destroyed, const std::string& name, const std::string& note) {
    auto* made = new noted<Named>(destroyed, note);
    made->name = name;
    return made;
}

/// One whose note is its name.
template <class Named>
Named* make_noted(destructions& destroyed, const std::string& name) {
    return make_noted<Named>(destroyed, name, name);
}

#endif
