// SPDX-License-Identifier: Apache-2.0

/// What a page is about.
#ifndef TOOLS_REPORT_REPORTED_INVENTORY_H
#define TOOLS_REPORT_REPORTED_INVENTORY_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "difference/difference.h"
#include "explanation/explanation.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/source_record.h"

/// A file and, for a database that tells it, what was loaded into it.
struct reported_source {
    source_record file;
    std::optional<source_record> loaded;
};

/// The name of a file, or what standard input is called.
std::string source_title(const source_record& file);

/// An older inventory, and what differs from it.
struct older_inventory {
    reported_source source;
    comparison compared;
};

/// An inventory with all that the rooms below tell of it, nothing of which is to be hidden any more.
struct reported_inventory {
    reported_source source;
    std::vector<inventory_table> tables;     ///< of all kinds
    std::vector<inventory_table> labelled;   ///< the same with the columns of rows/pci_label_columns.h
    bool is_explained;                       ///< a CDS file is, a database is not
    std::vector<explanation> explanations;   ///< of a CDS file
    std::unique_ptr<older_inventory> older;  ///< null where there is none
    anchors names;
    change_marks marks;

    const inventory_table& labelled_table(const inventory_kind& kind) const;
};

#endif
