// SPDX-License-Identifier: Apache-2.0

// One row of "Processor" for each processor.

#include <string>

#include <vonk_log.h>
#include <zeb_db.h>

#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
int parser::parse_processor(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* processor = visited->get_setting_group(processor_record.group);
    if (processor == nullptr) {
        return 0;
    }

    zeb_db_content_clear(content);
    put_int32(content, "NodeIndex", node_index);
    if (put_columns<processor_columns>(content, *processor) == 0) {
        return 1;
    }

    const int rc = zeb_db_insert(handle, processor_record.table, content, 0, &last_row_id);
    if (rc != 0) {
        const std::string socket = text_of(*processor, "Socket Designation");
        vonk_log::logErr("failed to insert Processor (%s), rc=%d", socket.c_str(), rc);
        return 0;
    }
    return 1;
}

}  // namespace cds_parser
