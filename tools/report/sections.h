// SPDX-License-Identifier: Apache-2.0

/// The sections of a page, each as markup; empty for one that the page does not have.
#ifndef TOOLS_REPORT_SECTIONS_H
#define TOOLS_REPORT_SECTIONS_H

#include <ctime>
#include <string>
#include <vector>

#include "report/reported_inventory.h"

/// What the page is about.
std::string source_section(const reported_inventory& reported, std::time_t at, bool redacted);

/// The answers in short, the verdict first.
std::string summary_section(const reported_inventory& reported);

/// What is another since the older inventory; empty without one.
std::string changes_section(const reported_inventory& reported);

/// The memory slots of each socket.
std::string memory_section(const reported_inventory& reported);

std::string processors_section(const reported_inventory& reported);

/// The PCI bridges and functions as a picture and as a tree, what was left out among them.
std::string topology_section(const reported_inventory& reported);

/// The rows of each kind.
std::string tables_section(const reported_inventory& reported);

/// What was left out, by reason.
std::string left_out_section(const reported_inventory& reported);

/// Settings without effect, and values that look wrong.
std::string settings_section(const reported_inventory& reported);

/// The ids that the sections and the page use besides those of parts.
const std::vector<std::string>& ids_of_the_page();

/// In one sentence, as in "64 of 77 components recorded, 13 left out, 3 changes since old.xml".
std::string verdict_text(const reported_inventory& reported);

#endif
