#pragma once

#include "compare/join_table.h"

namespace bench {

/// Sales with a customer, in their order: key (or code), value, and the customer's rating.
JoinResult joinByKey(JoinTables const& tables);
JoinResult joinByCode(JoinTables const& tables);

/// By key, with the customer's rating, credit, label and day.
JoinResult joinWide(JoinTables const& tables);

}  // namespace bench
