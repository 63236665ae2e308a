// SPDX-License-Identifier: Apache-2.0

/// A folder of CDS files named on the command line.
#ifndef TOOLS_SOURCES_CDS_FOLDER_H
#define TOOLS_SOURCES_CDS_FOLDER_H

#include <string>
#include <vector>

bool is_folder(const std::string& name);

/// The paths of the files in it whose names end in .xml, in the order of the bytes of their names. As for a shell's
/// *.xml, what is hidden or in a folder below is none of them; a link that leads nowhere is one. Throws failure with
/// the cause alone.
std::vector<std::string> cds_files_in(const std::string& folder);

#endif
