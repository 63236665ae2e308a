// SPDX-License-Identifier: Apache-2.0

/// A refresh: the whole load in one transaction, then the key files, the digests and the change notices.
#ifndef INVENTORY_REFRESH_H
#define INVENTORY_REFRESH_H

#include "cds_parser/load.h"

/// What parse_pci() does and gives, with a look at the document before the transaction is committed.
int refresh_inventory(const char* cds_path, unsigned aim_argument, const cds_parser::document_check& accepts);

#endif
