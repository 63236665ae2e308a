// SPDX-License-Identifier: Apache-2.0

/// The tables of a workstation's inventory database.
///
/// Numbers are SQLite integers: 32-bit ones as they are, unsigned 64-bit ones as the signed number with the same bits.
/// A column that was not put is null.
#ifndef WORKSTATION_SCHEMA_H
#define WORKSTATION_SCHEMA_H

/// How a database comes to its tables. Its version is the number of steps that it has taken.
struct database_schema {
    const char* const* steps;  ///< SQL; the first one makes the tables, each later one changes them
    int version;               ///< how many steps there are
};

/// The schema of this version of the platform. A new column is a new step, say "ALTER TABLE Memory ADD COLUMN Rank
/// INTEGER"; a step never changes, because databases have taken it.
extern const database_schema inventory_schema;

#endif
