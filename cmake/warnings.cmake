# The project's own code is free of warnings.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
