// SPDX-License-Identifier: Apache-2.0

/// The controller's log: printf-style lines at three levels.
#ifndef VONK_LOG_H
#define VONK_LOG_H

#pragma GCC visibility push(default)
namespace vonk_log {

void logErr(const char* format, ...) __attribute__((format(printf, 1, 2)));
void logWarn(const char* format, ...) __attribute__((format(printf, 1, 2)));
void logInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace vonk_log
#pragma GCC visibility pop

#endif
