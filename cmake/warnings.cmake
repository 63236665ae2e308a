# SPDX-License-Identifier: Apache-2.0

# The project's own code is free of warnings. Whoever only builds it may have a compiler that finds more.
option(ZEBDB_WARNINGS_AS_ERRORS "Let a warning stop the compiler; the presets do" OFF)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${ZEBDB_WARNINGS_AS_ERRORS}>:-Werror>)
