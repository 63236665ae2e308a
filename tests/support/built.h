// SPDX-License-Identifier: Apache-2.0

/// What is built besides a test program and used by it. The tests in the program may have been compiled by another
/// build, so that they cannot know.
#ifndef TESTS_SUPPORT_BUILT_H
#define TESTS_SUPPORT_BUILT_H

namespace built {

extern const char* const folder;          ///< the build folder
extern const char* const command;         ///< zebdb-cds
extern const char* const entry_point;     ///< entry_point.cpp
extern const char* const failing_calls;   ///< failing_calls.cpp, to be preloaded
extern const char* const failing_insert;  ///< failing_insert.cpp, to be preloaded
extern const char* const failing_open;    ///< failing_open.cpp, to be preloaded
extern const char* const refresh;         ///< refresh_main.cpp

}  // namespace built

#endif
