#pragma once

#include <string>
#include <string_view>

/// A name as it is written in a statement: bare when it is a letter or underscore followed by
/// letters, digits, underscores and "$", and no word that a database keeps for itself; otherwise in
/// backticks, those inside doubled, which every database of the framework reads. For names that the
/// module itself turns into tables and columns; what definitions hold is statement text already.
std::string identifier(std::string_view name);
