// SPDX-License-Identifier: Apache-2.0

/// Reading CDS files that are named on the command line.
#ifndef TOOLS_SOURCES_CDS_FILE_H
#define TOOLS_SOURCES_CDS_FILE_H

#include <istream>
#include <string>

#include <zebdb_cds_parser.h>

#include "sources/input_file.h"

/// Reads the file of that name, "-" for standard input, into `document`. Throws failure when it is no CDS file or
/// cannot be read.
void read_cds_file(const std::string& name, cds_parser::document& document);

/// Reads `document` from `in`, which holds what is in `input`. Throws failure with the cause alone; lack_of_memory
/// where the input is not to blame.
void read_cds(std::istream& in, const input_file& input, cds_parser::document& document);

#endif
