// What a run of a SQL source costs beside the database: a definition of 30 columns and 10 filters,
// with tokens, a manager and a unit column, on a connection that takes everything
// and has no rows. Beside it a loop by hand that joins the same text and binds the same values.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "core/app/application.h"
#include "mox/core/error.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace {

constexpr int kColumns = 30;
constexpr int kConditions = 7;  // with three tokens ten filters

/// A database that answers at once: the fields of the definition, and no rows.
class InstantStatement final : public moxDatabaseConnection::PreparedStatement {
 public:
  explicit InstantStatement(std::vector<moxDatabaseConnection::FieldInfo> const& fields)
      : fields_(fields) {}

  void bindInt(int, int value) override { benchmark::DoNotOptimize(value); }
  void bindDouble(int, double) override {}
  void bindString(int, std::string_view) override {}
  void bindDate(int, date_t const&) override {}
  void bindNull(int) override {}
  void execute() override {}
  bool fetch() override { return false; }
  int fieldCount() const override { return static_cast<int>(fields_.size()); }
  moxDatabaseConnection::FieldInfo const& field(int index) const override {
    return fields_.at(static_cast<std::size_t>(index));
  }
  std::int64_t rowCount() const override { return 0; }
  bool isNull(int) const override { return true; }
  int getInt(int) const override { return 0; }
  double getDouble(int) const override { return 0; }
  std::string_view getString(int) const override { return {}; }
  bool getBool(int) const override { return false; }
  date_t getDate(int) const override { return {}; }
  datetime_t getDateTime(int) const override { return {}; }
  std::shared_ptr<moxReadBlob> getBlob(int) const override { return {}; }
  void bindDateTime(int, datetime_t const&) override {}
  void bindBlob(int, moxReadBlob const&) override {}

 private:
  std::vector<moxDatabaseConnection::FieldInfo> const& fields_;
};

class InstantDatabase final : public moxDatabaseConnection {
 public:
  std::vector<FieldInfo> fields;
  std::size_t lastSize = 0;  // of the text

  std::shared_ptr<PreparedStatement> prepare(std::string const& sql, std::string const&,
                                             std::string const&) override {
    lastSize = sql.size();
    return std::make_shared<InstantStatement>(fields);
  }
  std::shared_ptr<PreparedStatement> prepareForUnit(std::string const& sql, std::string const&,
                                                    std::string const&, std::string const&,
                                                    std::string const&) override {
    return prepare(sql, "", "where");
  }
  void execute(std::string const&) override {}
};

std::string columnName(int index) {
  return "coluna_" + std::to_string(index);
}

/// An application with the module and that database, one for the program.
class Host {
 public:
  Host() : database_(new InstantDatabase), application_(mox::core::Settings()) {
    application_.setDatabase(std::unique_ptr<moxDatabaseConnection>(database_));
    application_.addModule({moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
                            moxPlugIn_EntryPoint, moxPlugIn_RegisterClasses},
                           "the linked module");
    application_.start();
    makeDefinition();
  }

  template <class T>
  std::shared_ptr<T> get(char const* name) {
    return application_.get<T>(name);
  }

  InstantDatabase& database() { return *database_; }

  std::shared_ptr<moxSQLDataSourceExecution> execution() const {
    auto made =
        std::dynamic_pointer_cast<moxSQLDataSourceExecution>(definition_->createExecution());
    made->addManageFiltersData({"tela", {}, {{"", "", "", "{{p_turma}}", "turma"}}});
    return made;
  }

  std::shared_ptr<moxDataMatrixSQLFilter> equals(std::string const& table,
                                                 std::string const& column) {
    auto filter = get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    filter->setColumnName(table, column);
    filter->setValue(7);
    return filter;
  }

  /// With the filters that a user gave.
  std::shared_ptr<moxDataSourceExecutionContext> context() {
    auto made = get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    std::vector<std::shared_ptr<moxDataMatrixSQLFilter>> filters = {equals("", "{{p_ano}}")};
    for (int i = 0; i < kConditions; ++i) {
      filters.push_back(equals("t", columnName(i)));
    }
    made->setDataSourceFilters("fonte", filters);
    made->setDataSourceFilters("tela", {equals("", "turma")});
    made->processDataSources({}, {}, {1, 2, 3}, 1);
    return made;
  }

 private:
  void makeDefinition() {
    definition_ = get<moxSQLDataSource>("moxSQLDataSource");
    definition_->setName("fonte");
    definition_->setSQLTipo(moxSQLDataSource::kComposed);
    definition_->setSQLFrom("alunos t");
    definition_->setSQLJoin("inner join turmas u on u.id = t.id_turma");
    definition_->setSQLWhere(
        "t.ano = {{p_ano}} and u.id = {{p_turma}} and (t.ativo = 1 or t.matriz = "
        "{{p_idUnidadeNegocioMatriz}})");
    definition_->setSQLGroup("t.coluna_0");
    for (int i = 0; i < kColumns; ++i) {
      moxDatabaseConnection::FieldInfo info{columnName(i), columnName(i), "t", "alunos", {}};
      auto const column = definition_->createColumn(&info);
      column->setSQLColumn({"coalesce(t." + columnName(i) + ", 0)", columnName(i)});
      definition_->addOrderColumn(column, i % 2 != 0);
      database_->fields.push_back(info);
    }
    definition_->setUnidadeColumn(definition_->columnAt(kColumns - 1), true);
  }

  InstantDatabase* database_;  // the application's
  mox::core::Application application_;
  std::shared_ptr<moxSQLDataSource> definition_;
};

Host& host() {
  static Host host;
  return host;
}

void runOfASource(benchmark::State& state) {
  auto const execution = host().execution();
  for (auto _ : state) {
    state.PauseTiming();
    auto const context = host().context();
    state.ResumeTiming();
    try {
      if (!execution->generateDataMatrix(context, "")) {
        state.SkipWithError("the name is taken");
      }
    } catch (moxError const& error) {
      state.SkipWithError(error.errorMessage().c_str());
    }
  }
  state.counters["bytes of text"] = static_cast<double>(host().database().lastSize);
}

void byHand(benchmark::State& state) {
  std::string expressions[kColumns];
  for (int i = 0; i < kColumns; ++i) {
    expressions[i] = "coalesce(t." + columnName(i) + ", 0) as " + columnName(i) + ",";
  }
  for (auto _ : state) {
    std::string text = "select ";
    for (auto const& expression : expressions) {
      text += expression;
    }
    text.pop_back();
    text +=
        " from alunos t inner join turmas u on u.id = t.id_turma where t.ano = ? and u.id = ? "
        "and (t.ativo = 1 or t.matriz = ?)";
    for (int i = 0; i < kConditions; ++i) {
      text += " and t." + columnName(i) + " = ? ";
    }
    text += " and ( t.coluna_29 in (?,?,?)  or t.coluna_29 is null  )  group by t.coluna_0";
    for (int i = 0; i < kColumns; ++i) {
      text +=
          (i == 0 ? " order by t." : ", t.") + columnName(i) + (i % 2 != 0 ? " desc " : " asc ");
    }
    auto const statement = host().database().prepare(text, "", "where");
    for (int i = 0; i < kConditions + 6; ++i) {
      statement->bindInt(i, 7);
    }
    statement->execute();
  }
  state.counters["bytes of text"] = static_cast<double>(host().database().lastSize);
}

BENCHMARK(runOfASource);
BENCHMARK(byHand);

}  // namespace
