// SPDX-License-Identifier: Apache-2.0

#include "report/report.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <zebdb_cds_parser/version.h>

#include "console/time_text.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "listing/listing_formats.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/embedded_files.h"
#include "report/page_template.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/redaction.h"
#include "rows/table.h"
#include "sources/open_inventory.h"
#include "topology/pci_labels.h"
#include "topology/pci_names.h"

using nlohmann::json;
using nlohmann::ordered_json;

namespace {

// How a policy names a script or style that it lets pass.
std::string hash_of(std::string_view text) {
    sha256_ctx context = {};
    ::sha256_init(&context);
    ::sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    ::sha256_digest(&context, sizeof digest, digest);
    char encoded[BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE)];
    ::base64_encode_raw(encoded, sizeof digest, digest);
    return std::string(encoded, sizeof encoded);
}

reported_source source_of(const opened_source& opened) {
    return {opened.file, opened.rows.source()};
}

std::vector<explanation> explanations_in(opened_source& opened) {
    return opened.document == nullptr ? std::vector<explanation>() : explanations_of(*opened.document, false);
}

std::vector<inventory_table> with_labels(std::vector<inventory_table> tables) {
    pci_names names;
    for (inventory_table& table : tables) {
        add_pci_labels(table, names);
    }
    return tables;
}

void redact(comparison& compared) {
    for (table_difference& difference : compared.kinds) {
        redact(difference.old_table);
        redact(difference.new_table);
    }
}

reported_inventory gather(opened_source& shown, opened_source* old, bool hides) {
    std::vector<inventory_table> tables = shown.rows.read_all();
    std::vector<explanation> explanations = explanations_in(shown);
    std::unique_ptr<older_inventory> older;
    if (old != nullptr) {
        older =
            std::make_unique<older_inventory>(older_inventory{source_of(*old), compare(old->rows.read_all(), tables)});
    }
    if (hides) {  // only now: serial numbers tell what moved
        std::for_each(tables.begin(), tables.end(), [](inventory_table& table) { redact(table); });
        std::for_each(explanations.begin(), explanations.end(), [](explanation& told) { redact(told); });
        if (older) {
            redact(older->compared);
        }
    }
    anchors names(tables, explanations, ids_of_the_page());
    change_marks marks(older ? &older->compared : nullptr);
    std::vector<inventory_table> labelled = with_labels(tables);
    return {source_of(shown),        std::move(tables), std::move(labelled), shown.document != nullptr,
            std::move(explanations), std::move(older),  std::move(names),    std::move(marks)};
}

ordered_json source_document(const reported_source& source) {
    ordered_json told = {
        {"name", source.file.name}, {"bytes", source.file.bytes}, {"sha256", source.file.sha256}, {"loaded", nullptr}};
    if (source.loaded) {
        told["loaded"] = {{"name", source.loaded->name},
                          {"bytes", source.loaded->bytes},
                          {"sha256", source.loaded->sha256},
                          {"at", rfc3339_text(source.loaded->loaded_at)}};
    }
    return told;
}

ordered_json left_out_document(const reported_inventory& reported) {
    ordered_json all = ordered_json::array();
    for (std::size_t place = 0; place < reported.explanations.size(); ++place) {
        const explanation& told = reported.explanations[place];
        if (is_left_out(told)) {
            all.push_back({{"id", reported.names.of_explanation(place).id},
                           {"path", told.path},
                           {"title", told.title},
                           {"code", code_of(told)},
                           {"reasons", told.judged.reasons}});
        }
    }
    return all;
}

// All that the page tells, for programs: what show, explain and diff print as JSON.
ordered_json document_of(const reported_inventory& reported, const report_options& options) {
    ordered_json document = listing_document(reported.tables);
    document["made_by"] = "zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING;
    document["made_at"] = rfc3339_text(options.at);
    document["redacted"] = options.redact;
    document["source"] = source_document(reported.source);
    document["left_out"] = nullptr;
    if (reported.is_explained) {
        document["left_out"] = left_out_document(reported);
        document["explanation"] = explanation_document(reported.explanations);
    }
    document["against"] = nullptr;
    if (reported.older) {
        document["against"] = source_document(reported.older->source);
        document["difference"] = difference_document(reported.older->compared);
    }
    return document;
}

std::string title_of(const reported_inventory& reported) {
    const std::string& name = reported.source.file.name;
    return name == "-" ? "standard input" : name.substr(name.rfind('/') + 1);
}

}  // namespace

std::string report_page(opened_source& shown, opened_source* old, const report_options& options) {
    const reported_inventory reported = gather(shown, old, options.redact);
    const std::string_view style = embedded_file("page.css");
    const std::string_view script = embedded_file("page.js");
    return filled("page.html", {{"title", title_of(reported)},
                                {"version", ZEBDB_CDS_PARSER_VERSION_STRING},
                                {"style", std::string(style)},
                                {"style_hash", hash_of(style)},
                                {"script", std::string(script)},
                                {"script_hash", hash_of(script)},
                                {"compared", reported.older != nullptr},
                                {"source_section", source_section(reported, options.at, options.redact)},
                                {"summary_section", summary_section(reported)},
                                {"changes_section", changes_section(reported)},
                                {"memory_section", memory_section(reported)},
                                {"processors_section", processors_section(reported)},
                                {"topology_section", topology_section(reported)},
                                {"tables_section", tables_section(reported)},
                                {"left_out_section", left_out_section(reported)},
                                {"settings_section", settings_section(reported)},
                                {"document", script_of(document_of(reported, options))}});
}
