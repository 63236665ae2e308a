// SPDX-License-Identifier: Apache-2.0

/// @file
/// The entry points that the controller's inventory service calls.
///
/// For C and C++; read_inventory_digest() is for C++ alone.
///
/// A call runs on its caller's thread, and none of them locks anything: the caller serialises calls that touch the same
/// database or the same files. parse_cds() with handles on different databases may run in several threads at the same
/// time, as far as the platform's functions may; the others work on the platform's one database and on files.
///
/// Where memory is out, std::bad_alloc may pass each of them; no other exception does, if none passes the platform's
/// functions. Nothing is left open then but what the caller has opened: parse_pci() rolls its transaction back first,
/// and the next call finds what a failed one leaves.
#ifndef ZEBDB_CDS_PARSER_ENTRY_POINTS_H
#define ZEBDB_CDS_PARSER_ENTRY_POINTS_H

#ifdef __cplusplus
#include <string>
#endif

#include <zeb_db.h>

#include "zebdb_cds_parser/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Replaces the rows of "Processor", "Memory", "PCIBridge" and "PCIs" by what the CDS file at `path` describes.
///
/// The handle and any transaction around the call are the caller's: begin one before, commit it on 0 and roll it back
/// on -1, or a failed load leaves the tables emptied or half filled. Returns 0, or -1 when the handle is null
/// (silently), a table could not be emptied, the file was refused or a row could not be written (each with a logged
/// error). Leaves the marker file "/tmp/.dmdb_memory_deleted_flag" once the memory rows are deleted.
ZEBDB_CDS_PARSER_EXPORT int parse_cds(_zeb_db_handle_t* handle, const char* path);

/// Refreshes the inventory: loads the CDS file at `cds_path` (null: loads none) with parse_cds() and then runs
/// parse_aim() with `aim_argument`, both in one transaction on the platform's database.
///
/// Once that is committed it writes the function keys to "/var/DS/pci_inventory.fkey" and "/var/DS/inventory.fkey",
/// runs "/bin/pci_digest.sh", and gives notice with agentless_update_inventory_sequence() of each inventory whose
/// digest in "/var/vonk" changed. A digest script that fails counts as a change of every inventory that had a digest.
///
/// Returns 0 once the transaction is committed, whatever happens afterwards; -1, with a logged error, when it was not,
/// and then the inventory is what it was.
ZEBDB_CDS_PARSER_EXPORT int parse_pci(const char* cds_path, unsigned aim_argument);

/// Tests without a refresh whether the inventory may have changed: whether one of the two files differs from the digest
/// that save_pci_digest() left of it, whether firmware is pending, or whether a function key of the last refresh has
/// vanished from the database. It then rebuilds the in-memory tables, unless a file alone settled the matter.
///
/// `changed` must not be null; it is set to 1 for a change and to 0 for none. Returns 0, or -1 when the test could not
/// be made: a file or its digest is missing, the database is unavailable, or "/var/DS/inventory.fkey" cannot be read.
/// `*changed` means nothing then.
///
/// Both paths are handed to a shell as they are and the command is cut at 127 characters: pass no path that holds a
/// blank or a character that means something to a shell, and none longer than 96 bytes.
ZEBDB_CDS_PARSER_EXPORT int check_pci(const char* first_file, const char* second_file, int* changed);

/// Saves the SHA-384 of each file beside it, in "FILE.digest", for check_pci() to compare with. 0, or -1 when a path is
/// null or names no file (silently) or a digest could not be written (with a logged error); the first file's digest
/// stays when only the second fails.
///
/// Both paths are handed to a shell as they are and the command, which names the path twice, is cut at 127 characters:
/// pass no path that holds a blank or a character that means something to a shell, and none longer than 43 bytes. A
/// longer one may write a digest file of another name.
ZEBDB_CDS_PARSER_EXPORT int save_pci_digest(const char* first_file, const char* second_file);

/// Keeps the PCI address of the controller's own bridge, as the inventory has it, in "/var/log/bmc_bdf.bin": the bus,
/// device and function number, one byte each. The file is written, and a line logged, only when the address changed.
///
/// Returns 0 when the file was rewritten, the number of bytes it holds (3) when it is up to date, and -1 when it could
/// not be written whole. 6: no database. Another code of the database: the query failed, or (usually 101) the inventory
/// has no such bridge. When the address changed but the file cannot be opened for writing: the number of bytes it
/// holds, or 9 when it cannot be read either. 0 as well when the query gives no result.
ZEBDB_CDS_PARSER_EXPORT int update_bmc_addr(void);

#ifdef __cplusplus
}  // extern "C"

/// Reads the inventory digests that "/bin/pci_digest.sh" left in "/var/vonk": the first line of each file replaces the
/// string. A file that cannot be opened leaves its string as it is.
ZEBDB_CDS_PARSER_EXPORT void read_inventory_digest(std::string& system_digest, std::string& pci_digest);
#endif

#endif
