// SPDX-License-Identifier: Apache-2.0

/// Made-up CDS files of any size, so that what a load costs can be measured where the file's size is the question.
#ifndef BENCH_CDS_GENERATOR_H
#define BENCH_CDS_GENERATOR_H

#include <cstdint>
#include <iosfwd>

enum class white_space {
    none,    ///< no text between the elements
    tabs,    ///< every element on a line of its own, a tab a level
    blanks,  ///< every element on a line of its own, two blanks a level
};

/// Writes a CDS file with `servers` main servers. Each has 2 processors, 24 memory devices, four of them persistent,
/// and 90 PCI functions in six trees, 42 of them bridges; with tabs that is about 280 kB. The same arguments give the
/// same bytes on every machine. Whether all could be written, the stream tells.
void generate_cds(std::ostream& out, unsigned servers, std::uint32_t seed, white_space between);

#endif
