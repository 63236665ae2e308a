// SPDX-License-Identifier: Apache-2.0

/// What the change test found, for people.
#ifndef TOOLS_CHANGE_DETECTION_CHANGE_REASONS_H
#define TOOLS_CHANGE_DETECTION_CHANGE_REASONS_H

#include <string>
#include <vector>

#include <zeb_db.h>

#include "sources/library_log.h"

/// Why check_pci() says that the inventory may have changed, a phrase each. Like the test this stops at the first file
/// that changed.
std::vector<std::string> change_reasons(const std::string& first_file, const std::string& second_file,
                                        _zeb_db_handle_t* handle);

/// Why check_pci(), which logged that, could not tell.
std::string reason_for_no_answer(const std::string& first_file, const std::string& second_file, const library_log& log);

#endif
