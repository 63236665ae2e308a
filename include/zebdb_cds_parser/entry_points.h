/// The entry points that the controller's inventory service calls.
///
/// None of them locks anything: the caller serialises calls that touch the same database or the same files.
#ifndef ZEBDB_CDS_PARSER_ENTRY_POINTS_H
#define ZEBDB_CDS_PARSER_ENTRY_POINTS_H

#include <zeb_db.h>

#include "zebdb_cds_parser/export.h"

extern "C" {

/// Replaces the rows of "Processor", "Memory", "PCIBridge" and "PCIs" by what the CDS file at `path` describes.
///
/// The handle and any transaction around the call are the caller's: begin one before, commit it on 0 and roll it back
/// on -1, or a failed load leaves the tables emptied or half filled. Returns 0, or -1 when the handle is null
/// (silently), a table could not be emptied, the file was refused or a row could not be written (each with a logged
/// error). Leaves the marker file "/tmp/.dmdb_memory_deleted_flag" once the memory rows are deleted.
ZEBDB_CDS_PARSER_EXPORT int parse_cds(_zeb_db_handle_t* handle, const char* path);

}  // extern "C"

#endif
