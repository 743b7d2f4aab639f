#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "mox/core/application.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;
using Cursor = std::shared_ptr<moxIterator>;

struct Spec {
  std::string registeredName;
  std::string source;
};

struct Definition {
  std::vector<std::string> indexes;  // each once
  std::vector<Spec> functions;
  bool countColumn = false;
};

constexpr std::array kFunctions{
    "moxDoubleSum", "moxIntegralSum", "moxDoubleMin",  "moxIntegralMin", "moxDoubleMax",
    "moxDoubleAvg", "moxIntegralAvg", "moxBlobFirst",  "moxBlobLast",    "moxIntegralMax",
    "moxTextLast",  "moxTextFirst",   "moxTextMin",    "moxTextMax",     "moxTextAppend",
    "moxDateMin",   "moxDateMax",     "moxTextPrepend"};

/// The last text so far behind the number of rows: of a class that nobody registered, so that it is
/// run through cursors.
class Teller final : public virtual moxAggregationFunction {
 public:
  explicit Teller(std::string source) : source_(std::move(source)) {}
  std::string name() const override { return "testTeller"; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return true; }
  bool load(std::shared_ptr<moxXMLNode>) override { return true; }
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    return {column("told", texts())};
  }
  void setIterators(std::vector<Cursor> iterators) override {
    cursor_ = std::dynamic_pointer_cast<moxIteratorBase<std::string>>(iterators.front());
  }
  bool compute(std::shared_ptr<moxDataMatrixRow const> row) override {
    auto const source = row->findIterator(source_);
    cursor_->set(cursor_->get() + (source->isNull() ? "-" : std::to_string(source->pos())));
    return true;
  }
  void posProcess(std::shared_ptr<moxDataMatrix>) override {}
  std::vector<std::string> getMetaColumns() const override { return {}; }

 private:
  std::string source_;
  std::shared_ptr<moxIteratorBase<std::string>> cursor_;
};

std::shared_ptr<moxAggregationFunction> functionOf(TestHost& host, Spec const& spec) {
  if (spec.registeredName == "testTeller") {
    return std::make_shared<Teller>(spec.source);
  }
  auto made = host.get<moxCommonAggregationFunction>(spec.registeredName);
  made->setSourceColumn(spec.source);
  made->setTargetColumn(spec.registeredName + " " + spec.source);
  return made;
}

Matrix aggregated(TestHost& host, Definition const& definition, Matrix const& input) {
  auto const engine = host.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  for (auto const& index : definition.indexes) {
    engine->pushIndexColumn(index);
  }
  for (auto const& spec : definition.functions) {
    engine->addFunction(functionOf(host, spec));
  }
  return engine->aggregate(input, definition.countColumn, "");
}

/// The aggregation as a clerk would make it: row by row, looking through the groups from the first
/// one, all of it with cursors.
class PlainAggregation {
 public:
  PlainAggregation(TestHost& host, Definition const& definition, Matrix const& input)
      : result_(matrix({})), row_(input->begin()) {
    for (auto const& index : definition.indexes) {
      addIndex(input, index);
    }
    for (auto const& spec : definition.functions) {
      functions_.push_back(functionOf(host, spec));
      std::vector<Cursor> cursors;
      for (auto const& made : functions_.back()->columns()) {
        result_->addColumn(made);
        cursors.push_back(made->begin());
        targets_.push_back(cursors.back());
      }
      functions_.back()->setIterators(cursors);
    }
    if (definition.countColumn && row_) {
      counts_ = column("data_count", ints());
      result_->addColumn(counts_);
    }
  }

  Matrix result() {
    if (!row_) {
      return result_;
    }
    unsigned int rows = row_->count();
    for (; rows != 0; --rows, row_->next()) {
      findGroup();
      for (auto const& function : functions_) {
        function->compute(row_);
      }
    }
    for (auto const& function : functions_) {
      function->posProcess(result_);
    }
    return result_;
  }

 private:
  void addIndex(Matrix const& input, std::string const& index) {
    if (auto const source = input->columnByName(index)) {
      auto const target = column(index, {source->getType(), {}});
      result_->addColumn(target);
      if (row_) {
        pairs_.emplace_back(row_->findIterator(index), target->begin());
      }
    }
  }

  void goTo(unsigned int group) {
    for (auto const& pair : pairs_) {
      pair.second->goTo(group);
    }
    for (auto const& target : targets_) {
      target->goTo(group);
    }
    group_ = group;
  }

  bool agrees() const {
    for (auto const& [source, target] : pairs_) {
      if (!source->equals(target)) {
        return false;
      }
    }
    return true;
  }

  void findGroup() {
    if (groups_ == 0 || !agrees()) {
      unsigned int group = 0;
      for (goTo(0); group < groups_ && !agrees();) {
        goTo(++group);
      }
      if (group == groups_) {
        newGroup();
      }
    }
    if (counts_) {
      auto const cursor = std::dynamic_pointer_cast<moxIteratorBase<int>>(counts_->begin());
      cursor->goTo(group_);
      cursor->set(cursor->get() + 1);
    }
  }

  void newGroup() {
    result_->appendNullRow();
    goTo(groups_++);
    for (auto const& [source, target] : pairs_) {
      target->set(source);
    }
  }

  Matrix result_;
  std::shared_ptr<moxDataMatrixRow> row_;
  std::vector<std::pair<Cursor, Cursor>> pairs_;
  std::vector<Cursor> targets_;
  std::vector<std::shared_ptr<moxAggregationFunction>> functions_;
  std::shared_ptr<moxDataMatrixColumn> counts_;
  unsigned int groups_ = 0;
  unsigned int group_ = 0;
};

Definition randomDefinition(RandomTables& random, Matrix const& input) {
  Definition made;
  for (std::size_t i = random.pick(4); i != 0; --i) {
    std::string const name = random.pick(15) == 0 ? "missing" : random.columnOf(*input);
    if (std::find(made.indexes.begin(), made.indexes.end(), name) == made.indexes.end()) {
      made.indexes.push_back(name);
    }
  }
  for (std::size_t i = random.pick(6); i != 0; --i) {
    std::string const source = random.pick(15) == 0 ? "missing" : random.columnOf(*input);
    made.functions.push_back({kFunctions[random.pick(kFunctions.size())], source});
  }
  if (random.pick(6) == 0) {
    made.functions.push_back({"testTeller", random.columnOf(*input)});
  }
  made.countColumn = random.pick(2) == 0;
  return made;
}

/// Cells one by one, down to the sign of a zero and the object of a blob.
bool sameBits(moxDataMatrix const& one, moxDataMatrix const& other) {
  for (unsigned int i = 0; i < one.columnCount(); ++i) {
    for (unsigned int row = 0; row < one.columnAt(i)->numRows(); ++row) {
      Cell const left = cellAt(*one.columnAt(i), row);
      Cell const right = cellAt(*other.columnAt(i), row);
      auto const* const number = std::get_if<double>(&left);
      if (number != nullptr && std::signbit(*number) != std::signbit(std::get<double>(right)) &&
          *number == *number) {
        return false;
      }
      if (number == nullptr && !(left == right)) {
        return false;
      }
    }
  }
  return true;
}

/// Writes the matrix into the database as it stands.
void temporaryTable(TestHost& host, moxDataMatrix const& table, std::string const& tableName) {
  auto const pushed = host.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  auto const copy = matrix({});
  std::vector<std::string> names;
  for (unsigned int i = 0; i < table.columnCount(); ++i) {
    copy->addColumn(std::const_pointer_cast<moxDataMatrixColumn>(table.columnAt(i)));
    names.push_back(table.columnAt(i)->getName());
  }
  pushed->pushSourceDataMatrix(copy, names);
  pushed->process(tableName);
}

}  // namespace

TEST(DataMatrixAggregatorProperty, GivesWhatAPlainOneGives) {
  TestHost host;
  RandomTables random(20250711);
  for (int round = 0; round < 20000; ++round) {
    Matrix const input = random.table();
    Definition const definition = randomDefinition(random, input);
    Matrix const expected = PlainAggregation(host, definition, input).result();

    Matrix const actual = aggregated(host, definition, input);

    ASSERT_THAT(actual, isMatrix(expected)) << "round " << round << "\n" << asText(*input);
    ASSERT_TRUE(sameBits(*actual, *expected)) << "round " << round << "\n" << asText(*input);
  }
}

TEST(DataMatrixAggregatorProperty, GivesWhatADatabaseGives) {
  TestHost host(TestHost::kMemoryDatabase);
  RandomTables random(77, {.nan = false, .blobs = false, .repeatedNames = false});
  for (int round = 0; round < 300; ++round) {
    auto const rows = static_cast<unsigned int>(1 + random.pick(40));
    auto const input = matrix({});
    input->addColumn(random.column("k", moxDataMatrixTypes::Int, rows));
    input->addColumn(random.column("t", moxDataMatrixTypes::Text, rows));
    input->addColumn(random.column("v", moxDataMatrixTypes::Int, rows));
    input->addColumn(random.column("w", moxDataMatrixTypes::Text, rows));
    Definition const definition{{"k", "t"},
                                {{"moxIntegralMin", "v"},
                                 {"moxIntegralMax", "v"},
                                 {"moxTextMin", "w"},
                                 {"moxTextMax", "w"}},
                                true};
    temporaryTable(host, *input, "entrada");
    temporaryTable(host, *aggregated(host, definition, input), "saida");

    auto const difference = host.application().query(
        "select count(*) from (select k, t, min(v), max(v), min(w), max(w), count(*) from entrada "
        "group by k, t except select * from saida)",
        "where", 0, "", 0);

    ASSERT_TRUE(difference->step());
    ASSERT_EQ(difference->getInt(0), 0) << "round " << round << "\n" << asText(*input);
    auto const counts = host.application().query(
        "select (select count(*) from saida) - (select count(*) from (select 1 from entrada group "
        "by k, t))",
        "where", 0, "", 0);
    ASSERT_TRUE(counts->step());
    ASSERT_EQ(counts->getInt(0), 0) << "round " << round;
  }
}
