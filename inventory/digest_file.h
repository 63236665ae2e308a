// SPDX-License-Identifier: Apache-2.0

/// The SHA-384 of an input file, kept beside it in "INPUT.digest". The path goes to a shell unquoted and the command is
/// cut at 127 characters.
#ifndef INVENTORY_DIGEST_FILE_H
#define INVENTORY_DIGEST_FILE_H

/// Compares the file's digest with the saved one: stores 1 through `changed` when they differ and 0 when not. False,
/// with a logged error and `changed` untouched, when they could not be compared.
bool check_file_digest(const char* path, int* changed);

/// Saves the file's digest. False when the path is null or names no file (silently) or the digest could not be written
/// (with a logged error).
bool save_file_digest(const char* path);

#endif
