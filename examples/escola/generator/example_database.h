#pragma once

#include <string>

#include "escola/generator/checksum.h"
#include "escola/generator/generation.h"
#include "mox/core/database_connection.h"

namespace escola {

struct BuildOptions {
  std::string
      url;  // of the database, as in the settings of the program; a missing SQLite file is made
  std::string password;  // of a server's user
  Scale scale;
  Settings settings;
  bool replace = false;  // drop the example's tables where they are there already
};

/// Opens the database that `url` names.
std::unique_ptr<moxDatabaseConnection> openForExample(std::string const& url,
                                                      std::string const& password);

/// Makes the tables and fills them. Throws moxError, and leaves no table of the example behind,
/// when the database refuses something; throws moxError and changes nothing when a table is there
/// and `replace` is not set.
void buildExample(moxDatabaseConnection& connection, BuildOptions const& options,
                  Progress const& progress = {});

/// The sums of the tables as they stand in the database. Throws moxError when one is missing.
ChecksumSink readChecksums(moxDatabaseConnection& connection);

}  // namespace escola
