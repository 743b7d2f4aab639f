#pragma once

#include <string>

#include "mox/zyn/items/zyn_pack.h"

/// A pack item that tells how descriptions are found by identifier. A host registers the class; the
/// module only asks it for the pieces of the statement. The pieces are the author's text, in
/// MariaDB's dialect; values stand in them as {{p_idUnidadeNegocioPadrao}},
/// {{p_idUnidadeNegocioMatriz}} and {{p_idUsuario}}.
class moxZYNFetchDescFromID : public virtual moxZYNPackItem {
 public:
  /// From "select" to the end of the tables: an identifier, then its description.
  virtual std::string selectPart() const = 0;

  /// A condition with the word "where" in front, to which one more is joined by "and"; empty when
  /// there is none.
  virtual std::string wherePart() const = 0;

  /// The table, as the statement calls it, and the column that hold the identifier.
  virtual std::string table() const = 0;
  virtual std::string idColumn() const = 0;
};
