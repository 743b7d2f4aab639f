#include "zyn/items/zyn_tools.h"

#include <memory>
#include <utility>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/database_connection.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/fetch_desc_from_id.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_pack.h"

namespace {

using Values = std::map<std::string, int>;

[[noreturn]] void fail(std::string message) {
  throw moxDefaultErrorImpl<moxError>(std::move(message));
}

std::shared_ptr<moxZYNPack> findPack(std::string const& description) {
  auto const cache = moxApp->get<moxZYNCache>("moxZYNCache");
  auto pack = std::dynamic_pointer_cast<moxZYNPack>(cache->getCollection(description));
  if (!pack) {
    fail("ZYN Pack não encontrado: " + description);
  }
  return pack;
}

std::shared_ptr<moxZYNFetchDescFromID> findQuery(moxZYNPack& pack) {
  for (auto const& item : pack.items().get()) {
    if (auto query = std::dynamic_pointer_cast<moxZYNFetchDescFromID>(item)) {
      return query;
    }
  }
  fail("ZYN Pack não contém busca por Id.");
}

std::string compose(moxZYNFetchDescFromID const& query, std::size_t idCount) {
  std::string const where = query.wherePart();
  std::string text = query.selectPart();
  text += where.empty() ? " where " : " " + where + " and ";
  text += query.table() + "." + query.idColumn() + " in (";
  for (std::size_t i = 0; i < idCount; ++i) {
    text += i + 1 < idCount ? "?," : "?";
  }
  return text + ")";
}

/// Replaces each {{token}} by a mark, and gives their names in order.
std::vector<std::string> takeTokens(std::string& text) {
  std::vector<std::string> tokens;
  std::string marked;
  std::size_t done = 0;
  for (;;) {
    auto const open = text.find("{{", done);
    auto const close = open == text.npos ? text.npos : text.find("}}", open + 2);
    if (close == text.npos) {
      break;
    }
    marked.append(text, done, open - done).append("?");
    tokens.push_back(text.substr(open + 2, close - open - 2));
    done = close + 2;
  }
  text = marked.append(text, done);
  return tokens;
}

void bindAll(moxDatabaseConnection::PreparedStatement& statement,
             std::vector<std::string> const& tokens, Values const& values,
             std::set<int> const& ids) {
  int position = 0;
  for (auto const& token : tokens) {
    auto const value = values.find(token);
    if (value == values.end()) {
      fail("Filtro com token " + token + " não localizado");
    }
    statement.bindInt(position++, value->second);
  }
  for (int const id : ids) {
    statement.bindInt(position++, id);
  }
}

std::map<int, std::string> readPairs(moxDatabaseConnection::PreparedStatement& statement) {
  if (statement.fieldCount() < 2) {
    fail("The query for descriptions gives no column for them.");
  }
  std::map<int, std::string> pairs;
  while (statement.fetch()) {
    pairs.insert_or_assign(statement.getInt(0), std::string(statement.getString(1)));
  }
  return pairs;
}

}  // namespace

std::map<int, std::string> zynTools::getDescricoesIds(std::string const& packDescription,
                                                      std::set<int> const& ids, int unit,
                                                      int matrixUnit, int user) {
  auto const query = findQuery(*findPack(packDescription));
  if (ids.empty()) {
    return {};
  }
  std::string text = compose(*query, ids.size());
  auto const tokens = takeTokens(text);
  auto const statement = moxApp->databaseConnection().prepare(text);
  Values const values = {{"p_idUnidadeNegocioPadrao", unit},
                         {"p_idUnidadeNegocioMatriz", matrixUnit},
                         {"p_idUsuario", user}};
  bindAll(*statement, tokens, values, ids);
  statement->execute();
  return readPairs(*statement);
}
