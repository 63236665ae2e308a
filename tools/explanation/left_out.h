// SPDX-License-Identifier: Apache-2.0

/// What a load leaves out of a file, and by which rule.
#ifndef TOOLS_EXPLANATION_LEFT_OUT_H
#define TOOLS_EXPLANATION_LEFT_OUT_H

#include <vector>

#include <zebdb_cds_parser.h>

/// The rules by which hardware leaves no row.
enum class omission {
    no_location,    ///< a PCI function whose place in the server is unknown
    no_address,     ///< a PCI bridge or function without bus, device and function number
    recorded_once,  ///< a further function of a card that has its row
    nothing_known,  ///< no setting that the loader knows
    not_reached,    ///< it stands where the loader does not look
};

/// A component that carries a group which the loader records, or a child slot group with one, and that left no row.
struct left_out_element {
    const cds_parser::element* element;
    omission why;
    /// The function that has the row of the card; null unless the card is recorded once.
    const cds_parser::component* first_of_card;
};

/// All of them, in document order, by the loader's own rules. Looks at the elements only, so that it costs little
/// beside a load.
std::vector<left_out_element> left_out_of(const cds_parser::document& document);

#endif
