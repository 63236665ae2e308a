// SPDX-License-Identifier: Apache-2.0

#include "subcommands/subcommand.h"

#include <vector>

const std::vector<subcommand>& subcommands() {
    static const std::vector<subcommand> all = {
        {"load", "Replace the inventory by what a CDS file describes", define_load},
        {"show", "Print the inventory", define_show},
        {"tree", "Print the PCI bridges and functions as a tree", define_tree},
        {"explain", "Tell what became of every component of a CDS file, and why", define_explain},
        {"fields", "Print what the columns of an inventory mean", define_fields},
        {"dump", "Print the normalised text of a CDS file", define_dump},
        {"diff", "Print what differs between two inventories", define_diff},
        {"refresh", "Take the inventory to what a CDS file describes and say what changed", define_refresh},
        {"check", "Say whether the inventory may have changed since the last refresh", define_check},
        {"save-digest", "Save the digests that check compares with", define_save_digest},
        {"bmc-address", "Record and print the PCI address of the controller's own bridge", define_bmc_address},
    };
    return all;
}
