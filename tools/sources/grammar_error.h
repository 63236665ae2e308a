/// Where a CDS file breaks the grammar; the library says only how.
#ifndef TOOLS_SOURCES_GRAMMAR_ERROR_H
#define TOOLS_SOURCES_GRAMMAR_ERROR_H

#include <optional>
#include <string>

/// The line of the first element that does not belong where it stands, or that lacks a name. Nothing when there is no
/// such element, when the file cannot be read again, or when it has more lines than are counted.
std::optional<unsigned> line_of_grammar_error(const std::string& path);

#endif
