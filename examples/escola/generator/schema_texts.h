#pragma once

#include <string_view>

namespace escola {

/// The files of the folder schema/, as they were when the program was built.
std::string_view tablesSchema();
std::string_view indexesSchema();
std::string_view mariadbSchema();

}  // namespace escola
