// SPDX-License-Identifier: Apache-2.0

#include "support/built.h"

const char* const built::folder = BUILD_FOLDER;
const char* const built::command = COMMAND;
const char* const built::entry_point = ENTRY_POINT;
const char* const built::failing_calls = FAILING_CALLS;
const char* const built::failing_insert = FAILING_INSERT;
const char* const built::failing_open = FAILING_OPEN;
const char* const built::refresh = REFRESH;
