#include "zyn/datasources/sql_statement_texts.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "mox/core/error.h"

namespace {

using FilterSources = std::vector<std::shared_ptr<moxFilterDataSource const>>;
using Origins = std::vector<moxSQLDataSourceColumn::SQLColum>;

// A longer select list grows by itself; this spares most definitions the growing.
constexpr std::size_t kTypicalSelectSize = 1024;

void append(std::string& text, std::string_view keyWord, std::string_view piece) {
  text.append(keyWord).append(piece);
}

void appendIfAny(std::string& text, std::string_view keyWord, std::string_view piece) {
  if (!piece.empty()) {
    append(text, keyWord, piece);
  }
}

/// A further piece joins those that are there; the first one brings the key word.
void appendJoined(std::string& text, std::string_view keyWord, std::string_view joiningWord,
                  std::string_view piece) {
  appendIfAny(text, text.empty() ? keyWord : joiningWord, piece);
}

void appendExpression(std::string& list, moxSQLDataSourceColumn const& column) {
  auto const [expression, alias] = column.getSQLColumn();
  list += expression;
  appendIfAny(list, " as ", alias);
}

std::string originExpression(moxSQLDataSource const& definition,
                             moxSQLDataSourceColumn::SQLColum const& origin) {
  auto const column = definition.findColumn(origin.tableName, origin.columnName);
  if (!column) {
    throw moxDefaultErrorImpl<moxError>("Não localizado a coluna " + origin.tableName + "." +
                                        origin.columnName + " no source de origem " +
                                        definition.getName());
  }
  return column->getSQLColumn().first;
}

/// The text with an expression of the definition for each mark "[...]". What stands between the
/// brackets is for readers: the marks take the origins in their order. A bracket that nothing
/// closes takes the rest of the text away.
void appendWithOrigins(std::string& list, std::string_view text, Origins const& origins,
                       moxSQLDataSource const& definition) {
  for (std::size_t mark = 0;; ++mark) {
    auto const opening = text.find('[');
    list += text.substr(0, opening);
    auto const closing = text.find(']', std::min(opening, text.size()));
    if (closing == std::string_view::npos) {
      return;
    }
    list += originExpression(definition, origins.at(mark));
    text.remove_prefix(closing + 1);
  }
}

void appendFilterSourceColumns(std::string& list, moxFilterDataSource const& filterSource,
                               moxSQLDataSource const& definition) {
  for (auto const& column : filterSource.columns()) {
    std::string text;
    appendExpression(text, *column);
    appendWithOrigins(list, text, column->getColumnOrigin(), definition);
    list += ',';
  }
}

std::string selectList(moxSQLDataSource const& definition, FilterSources const& filterSources) {
  std::string list;
  list.reserve(kTypicalSelectSize);
  for (auto const& column : definition.columns()) {
    appendExpression(list, *column);
    list += ',';
  }
  int replacements = 0;
  for (auto const& filterSource : filterSources) {
    if (filterSource->getTipoRetornoSelect() == moxFilterDataSource::kSubstitui) {
      ++replacements;
      list.clear();
    }
    appendFilterSourceColumns(list, *filterSource, definition);
  }
  if (replacements > 1) {
    throw moxDefaultErrorImpl<moxError>(
        "Não é permitido mais uma fonte de dados que não permita retorno das colunas");
  }
  return list;
}

void composePieces(SQLStatementTexts& texts, moxSQLDataSource const& definition,
                   FilterSources const& filterSources) {
  append(texts.select, "select ", selectList(definition, filterSources));
  texts.select.pop_back();  // the last comma; the blank of a list without columns
  append(texts.from, " from ", definition.getSQLFrom());
  appendIfAny(texts.join, " ", definition.getSQLJoin());
  appendIfAny(texts.where, " where ", definition.getSQLWhere());
  appendIfAny(texts.tail, " group by ", definition.getSQLGroup());
}

/// All groups go ahead of the first order: a statement has one list of each.
void addFilterSources(SQLStatementTexts& texts, FilterSources const& filterSources) {
  std::string order;
  for (auto const& filterSource : filterSources) {
    appendIfAny(texts.join, " ", filterSource->getSQLJoin());
    appendJoined(texts.where, " where ", " and ", filterSource->getSQLWhere());
    appendJoined(texts.tail, " group by ", ",", filterSource->getSQLGroup());
    appendJoined(order, " order by ", ",", filterSource->getSQLOrder());
  }
  texts.tail += order;
  texts.ordered = !order.empty();
}

}  // namespace

SQLStatementTexts composeSQLStatement(moxSQLDataSource const& definition,
                                      FilterSources const& filterSources) {
  SQLStatementTexts texts;
  if (definition.getSQLTipo() == moxSQLDataSource::kComposed) {
    composePieces(texts, definition, filterSources);
  } else {
    texts.select = definition.getSQL();
  }
  addFilterSources(texts, filterSources);
  return texts;
}
