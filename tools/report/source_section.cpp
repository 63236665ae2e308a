// SPDX-License-Identifier: Apache-2.0

#include <ctime>
#include <string>

#include <nlohmann/json.hpp>

#include <zebdb_cds_parser/version.h>

#include "console/time_text.h"
#include "report/page_template.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "sources/source_record.h"

using nlohmann::json;

namespace {

json file_json(const source_record& file) {
    return {{"name", source_title(file)}, {"bytes", file.bytes}, {"sha256", file.sha256}};
}

json source_json(const reported_source& source) {
    json told = file_json(source.file);
    if (source.loaded) {
        told["loaded"] = file_json(*source.loaded);
        told["loaded"]["at"] = time_text(source.loaded->loaded_at);
    }
    return told;
}

}  // namespace

std::string source_section(const reported_inventory& reported, std::time_t at, bool redacted) {
    json told = {{"source", source_json(reported.source)},
                 {"at", time_text(at)},
                 {"version", ZEBDB_CDS_PARSER_VERSION_STRING},
                 {"redacted", redacted}};
    if (reported.older) {
        told["old"] = source_json(reported.older->source);
    }
    return filled("source.html", told);
}
