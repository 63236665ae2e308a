// SPDX-License-Identifier: Apache-2.0

/// What people call a component of a CDS file.
#ifndef TOOLS_EXPLANATION_COMPONENT_TITLE_H
#define TOOLS_EXPLANATION_COMPONENT_TITLE_H

#include <string>

#include <zebdb_cds_parser.h>

#include "explanation/known_settings.h"

/// As in "PCI function 0000:3b:00.0", by the settings of `recorded`; null when the loader records none of its groups.
std::string component_title(const cds_parser::component& titled, const known_group* recorded);

/// What it is called in the title: its PCI address, or the text of the setting that names it. Empty for none.
std::string component_name(const cds_parser::component& titled, const known_group* recorded);

#endif
