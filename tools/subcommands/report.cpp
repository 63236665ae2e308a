// SPDX-License-Identifier: Apache-2.0

// zebdb-cds report: prints a page that shows an inventory.

#include "report/report.h"

#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "console/failure.h"
#include "console/output.h"
#include "console/time_text.h"
#include "sources/open_inventory.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct report_arguments {
    std::string name;
    std::string old_name;  // empty for none
    std::string at;        // empty for now
    bool redact = false;
};

int report(const report_arguments& arguments) {
    if (arguments.name == "-" && arguments.old_name == "-") {
        throw failure("only one of the two inventories can be standard input");
    }
    const std::optional<moment> at = time_in_option(arguments.at);
    const report_options options = {at ? second_of(*at) : std::time(nullptr), arguments.redact};
    opened_source shown = open_source(arguments.name);
    std::optional<opened_source> old;
    if (!arguments.old_name.empty()) {
        old = open_source(arguments.old_name);
    }
    const std::string page = report_page(shown, old ? &*old : nullptr, options);
    print(page);
    if (page.size() > large_page) {
        complain(
            "the page has " + std::to_string(page.size() / 1'000'000) +
            " MB, which browsers open slowly and mail servers may refuse; a file of fewer servers makes a smaller one");
    }
    return status_done;
}

}  // namespace

action define_report(command_line& arguments) {
    const auto options = std::make_shared<report_arguments>();
    arguments.argument("INVENTORY", options->name, "An inventory: a CDS file or a database; - is standard input");
    arguments.path_option("--against", "OLD", options->old_name,
                          "Tell what has changed since an older inventory, a CDS file or a database");
    arguments.text_option("--at", "TIME", options->at,
                          "The time that the page says it is made at, as 2026-11-19T10:00:00Z, instead of now");
    add_redact_flag(arguments, options->redact);
    return [options] { return report(*options); };
}
