// SPDX-License-Identifier: Apache-2.0

/// All that is said of a kind of row: what people call it, what its columns mean and which of them matter where.
#ifndef TOOLS_ROWS_KIND_DESCRIPTION_H
#define TOOLS_ROWS_KIND_DESCRIPTION_H

#include <string>
#include <vector>

#include "cds_parser/record_columns.h"
#include "console/text_table.h"
#include "rows/field.h"
#include "rows/shown_text.h"

/// What makes two rows of a kind the same, whatever their row ids.
struct row_identity {
    /// Which part a row is about: where it sits, or its address.
    std::vector<std::string> columns;
    /// What is left of `columns` when a server's index was changed. Empty where the rest says too little.
    std::vector<std::string> columns_without_node;
};

/// A text of a row with a word before it.
struct phrase {
    const char* before;
    shown_text text;
};

/// A column of a listing for people.
struct listed_column {
    const char* heading;
    shown_text text;
    alignment aligned = alignment::left;
};

struct kind_description {
    const char* part_name;                     ///< what one of them is called, as in "PCI bridge"
    const char* name_setting;                  ///< the setting that holds its own name; null where its address is that
    row_identity identity;                     ///< by which two inventories are compared
    std::vector<phrase> place;                 ///< where it is, in a sentence
    std::vector<phrase> part;                  ///< what it is, in a sentence
    std::vector<listed_column> listed;         ///< which columns people want to see, and in which order
    std::vector<cds_parser::column> recorded;  ///< that the loader takes from settings, in the order of being put
    std::vector<field> fields;                 ///< every column of a new database, in its order
};

#endif
