/// The tables of a workstation's inventory database.
#ifndef WORKSTATION_SCHEMA_H
#define WORKSTATION_SCHEMA_H

/// SQL that makes every table that is missing. Numbers are SQLite integers: 32-bit ones as they are, unsigned 64-bit
/// ones as the signed number with the same bits. A column that was not put is null.
extern const char* const inventory_schema;

#endif
