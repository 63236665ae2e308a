// SPDX-License-Identifier: Apache-2.0

/// Makes a file shorter for the library than it was when it asked for its size, in test programs that are built with
/// short_reads.cpp.
#ifndef TESTS_INVENTORY_SHORT_READS_H
#define TESTS_INVENTORY_SHORT_READS_H

#include <sys/stat.h>

/// While it lives, fread() gives one byte less of a file than it is asked for. One at a time.
class short_reads {
public:
    /// `path` is that of the file, which has to be there.
    explicit short_reads(const char* path);
    ~short_reads();
    short_reads(const short_reads&) = delete;
    short_reads& operator=(const short_reads&) = delete;

    bool concern(int descriptor) const;

private:
    struct stat file_ = {};
};

#endif
