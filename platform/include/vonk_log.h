// SPDX-License-Identifier: Apache-2.0

/// @file
/// The controller's log: printf-style lines at three levels.
#ifndef VONK_LOG_H
#define VONK_LOG_H

#pragma GCC visibility push(default)
namespace vonk_log {

/// Logs an error.
void logErr(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Logs a warning.
void logWarn(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Logs what was done.
void logInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace vonk_log
#pragma GCC visibility pop

#endif
