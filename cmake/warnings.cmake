# SPDX-License-Identifier: Apache-2.0

# The project's own code is free of warnings. In the build of another project none stops the compiler: it may be one
# that finds more.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>)
