#include "sources/refusal.h"

#include <cstring>

#include "sources/database_file.h"
#include "sources/grammar_error.h"

std::string cause_of_refusal(const input_file& input, const library_log& log) {
    if (input.read_error() != 0) {
        return std::strerror(input.read_error());
    }
    if (log.is_grammar_error() && input.can_be_read_again()) {
        const auto line = line_of_grammar_error(input.path());
        return (line ? "line " + std::to_string(*line) + ": " : "") + log.cause();
    }
    return with_advice(log.cause());
}
