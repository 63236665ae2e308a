// SPDX-License-Identifier: Apache-2.0

#include "sources/refusal.h"

#include <string>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "sources/input_file.h"
#include "sources/library_log.h"

std::string cause_of_refusal(const input_file& input, const library_log& log) {
    if (!input.read_error().empty()) {
        return input.read_error();
    }
    if (const auto failed = log.database_failure()) {
        return *failed;
    }
    try {
        cds_parser::document document;
        read_cds(*input.read_again(), input, document);
    } catch (const failure& cause) {
        return cause.what();
    }
    return log.problem();
}
