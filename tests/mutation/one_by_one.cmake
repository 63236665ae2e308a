# SPDX-License-Identifier: Apache-2.0

# Included by scripts/mutate's build: what is compiled anew, the source of the command that changes and the one that
# differs in each worker, is so alone. The tests, which never change, are compiled a folder at a time.
cmake_language(DEFER CALL set_target_properties zebdb_cds_command zebdb-cds built PROPERTIES UNITY_BUILD OFF)
