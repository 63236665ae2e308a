// SPDX-License-Identifier: Apache-2.0

#include "subcommands/subcommand.h"

#include <iterator>
#include <vector>

namespace {

constexpr subcommand table[] = {
    {"load",
     "Replace the inventory by what a CDS file describes",
     define_load,
     {"zebdb-cds load server.xml", "zebdb-cds load --strict --database server.db server.xml"}},
    {"show", "Print the inventory", define_show, {"zebdb-cds show memory", "zebdb-cds show server.xml --format json"}},
    {"tree",
     "Print the PCI bridges and functions as a tree",
     define_tree,
     {"zebdb-cds tree server.xml", "zebdb-cds tree --part 3b:00.0"}},
    {"explain",
     "Tell what became of every component of a CDS file, and why",
     define_explain,
     {"zebdb-cds explain server.xml", "zebdb-cds explain server.xml --part 3b:00.0"}},
    {"fields",
     "Print what the columns of an inventory mean",
     define_fields,
     {"zebdb-cds fields", "zebdb-cds fields memory"}},
    {"dump",
     "Print the normalised text of a CDS file",
     define_dump,
     {"zebdb-cds dump server.xml", "zebdb-cds dump --indent 0 server.xml"}},
    {"diff",
     "Print what differs between two inventories",
     define_diff,
     {"zebdb-cds diff inventory.db server.xml", "zebdb-cds diff one.xml other.xml --ignore serials"}},
    {"report",
     "Print a page that shows an inventory in a browser",
     define_report,
     {"zebdb-cds report server.xml >server.html",
      "zebdb-cds report server.xml --against old.xml --redact >server.html"}},
    {"export",
     "Print what many CDS files say, a line of JSON each",
     define_export,
     {"zebdb-cds export servers/ >observations.jsonl",
      "zebdb-cds export - --server web-17 <server.xml >observation.jsonl"}},
    {"refresh",
     "Take the inventory to what a CDS file describes and say what changed",
     define_refresh,
     {"zebdb-cds refresh server.xml", "zebdb-cds refresh server.xml --root try"}},
    {"check",
     "Say whether the inventory may have changed since the last refresh",
     define_check,
     {"zebdb-cds check server.xml settings.bin", "zebdb-cds check server.xml settings.bin --root try"}},
    {"save-digest",
     "Save the digests that check compares with",
     define_save_digest,
     {"zebdb-cds save-digest server.xml settings.bin", "zebdb-cds save-digest server.xml settings.bin --root try"}},
    {"bmc-address",
     "Record and print the PCI address of the controller's own bridge",
     define_bmc_address,
     {"zebdb-cds bmc-address", "zebdb-cds bmc-address --root try --database server.db"}},
    {"completion",
     "Print what completes the command in another shell than bash",
     define_completion,
     {"zebdb-cds completion zsh >~/.zfunc/_zebdb-cds",
      "zebdb-cds completion fish >~/.config/fish/completions/zebdb-cds.fish"}},
};

}  // namespace

const std::vector<subcommand>& subcommands() {
    static const std::vector<subcommand> all(std::begin(table), std::end(table));
    return all;
}
