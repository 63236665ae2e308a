// SPDX-License-Identifier: Apache-2.0

/// What a CDS file says of a server at a time, for who keeps the inventories of many servers.
#ifndef TOOLS_EXPORT_OBSERVATION_H
#define TOOLS_EXPORT_OBSERVATION_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

#include "console/time_text.h"
#include "explanation/component_loader.h"
#include "explanation/counterfactual.h"
#include "explanation/explanation.h"
#include "rows/table.h"
#include "sources/memory_inventory.h"
#include "sources/source_record.h"

struct observation {
    std::string server;
    moment observed_at;
    source_record source;                      ///< without a time; without a digest where it cannot be read to its end
    std::optional<std::string> refusal;        ///< why there are no rows, nothing where there are
    std::vector<inventory_table> tables;       ///< of all kinds
    std::vector<left_out_component> left_out;  ///< what has no row
};

struct observation_options {
    std::string server;        ///< its name; empty for that of the file
    std::optional<moment> at;  ///< when it was so; nothing for the file's own time
    bool redact = false;       ///< whether serial numbers and asset tags are hidden
};

/// Makes observations of CDS files, one after the other. None of them needs memory for those before. Throws failure
/// when there is not enough.
class observer {
public:
    explicit observer(observation_options options) : options_(std::move(options)) {}

    /// Of the file of that name; "-" is standard input. The server is called after the file, without .xml, and was seen
    /// at the file's time; what is no file has the present one. Throws failure where it is not the file that is to
    /// blame.
    observation observe(const std::string& name);

private:
    void read(const std::string& name, cds_parser::document& document, observation& seen) const;
    void add_rows(cds_parser::document& document, observation& seen);

    observation_options options_;
    memory_loader rows_;
    component_loader loader_;
    counterfactual doubts_;
};

/// One line of JSON: {"schema": 1, "server": ..., "processors": [...], ...}, its rows as `show` prints them.
std::string observation_line(const observation& seen);

#endif
