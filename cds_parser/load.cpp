// SPDX-License-Identifier: Apache-2.0

#include "load.h"

#include <sysipc.h>
#include <vonk_log.h>
#include <zeb_db.h>

#include "zebdb_cds_parser/document.h"
#include "zebdb_cds_parser/parser.h"

namespace cds_parser {

int load_document(parser& walker, _zeb_db_handle_t* handle, const char* path, const document_check& accepts) {
    if (walker.init() == 0) {
        vonk_log::logErr("failed to initialize the parser");
        return 0;
    }

    document cds;
    try {
        if (!cds.parse(path)) {
            vonk_log::logErr("failed to parse the CDS XML file");
            return 0;
        }
    } catch (const sysipc::exception& error) {  // node_error and name_error among them
        vonk_log::logErr("CDS XML ERROR: %s", error.what());
        return 0;
    }

    const int result = walker.parse_component(handle, &cds.root);
    if (result == 0) {
        vonk_log::logErr("failed to extract settings");
        return 0;
    }
    if (!accepts(cds)) {
        return 0;
    }
    vonk_log::logInfo("successfully parsed \"%s\"", path);
    return result;
}

int load_file(_zeb_db_handle_t* handle, const char* path, const document_check& accepts) {
    parser walker;
    if (handle == nullptr || walker.wipe(handle) == 0) {
        return -1;
    }
    return load_document(walker, handle, path, accepts) - 1;
}

}  // namespace cds_parser
