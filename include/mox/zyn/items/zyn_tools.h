#pragma once

#include <map>
#include <set>
#include <string>

#include "mox/core/plugin_base.h"

/// Turns identifiers into texts. Registered as "moxZYNTools", one for the process; it keeps no
/// state and may be used from any thread.
class moxZYNTools : public virtual moxPluginBase {
 public:
  /// The descriptions of the identifiers, by the query of the first moxZYNFetchDescFromID in a
  /// pack; an identifier that the query does not find is not among them. No identifiers give an
  /// empty result without a query. The numbers take the places of the query's tokens: `unit` of
  /// {{p_idUnidadeNegocioPadrao}}, `matrixUnit` of {{p_idUnidadeNegocioMatriz}}, `user` of
  /// {{p_idUsuario}}.
  ///
  /// Throws moxError: "ZYN Pack não encontrado: " and the description when there is no such pack,
  /// "ZYN Pack não contém busca por Id." when it has no query, "Filtro com token " and the token
  /// and " não localizado" for a token of another name; and what the database refuses.
  virtual std::map<int, std::string> getDescricoesIds(std::string const& packDescription,
                                                      std::set<int> const& ids, int unit,
                                                      int matrixUnit, int user) = 0;
};
