// SPDX-License-Identifier: Apache-2.0

/// The steps of a load, each for itself, as the benchmarks measure them.
#ifndef BENCH_WORKLOADS_H
#define BENCH_WORKLOADS_H

#include <cstddef>

#include <zeb_db.h>

/// Builds libxml2's document of the file, as it comes, and destroys it: what nobody who uses it can do without. Throws
/// std::runtime_error on a file that is refused.
void build_plain_document(const char* path);

/// Builds the XML library's document of the file and destroys it. Throws sysipc::exception on a file that is refused.
void build_xml_document(const char* path);

/// Reads the file into an element tree, destroys it and returns how many components it held. Throws
/// sysipc::exception on a file that is refused.
std::size_t read_tree(const char* path);

/// Loads the file with parse_cds() in one transaction. Throws std::runtime_error when a row or the transaction failed.
void load_inventory(_zeb_db_handle_t* handle, const char* path);

#endif
