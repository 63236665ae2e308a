// SPDX-License-Identifier: Apache-2.0

/// Where the rows of a database come from: what a load notes beside them.
#ifndef TOOLS_SOURCES_SOURCE_RECORD_H
#define TOOLS_SOURCES_SOURCE_RECORD_H

#include <cstdint>
#include <ctime>
#include <istream>
#include <string>

#include <zeb_db.h>

#include "sources/input_file.h"

struct source_record {
    std::string name;         ///< as it was named on the command line
    std::uint64_t bytes = 0;  ///< as they lie there, packed or not
    std::string sha256;       ///< of these bytes, in hexadecimal digits
    std::time_t loaded_at = 0;
};

/// The SHA-256 of what is left in `in`, and how many bytes that are; the rest of the record stays empty.
source_record digest_of(std::istream& in);

/// About the input, which has been read, as it is loaded now.
source_record source_of(const std::string& name, const input_file& input);

/// Puts the record into the database in the place of the one before; the transaction is the caller's. False, with the
/// failure noted by the platform, when that cannot be done.
bool write_source(_zeb_db_handle_t* handle, const source_record& source);

/// When and from what the rows were loaded, as in "Loaded 3 days ago, 2026-11-19 10:00:00 UTC, from 'x.xml'"; without
/// the file where its name is empty.
std::string age_text(const source_record& source, std::time_t now);

#endif
