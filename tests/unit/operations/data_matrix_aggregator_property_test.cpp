#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <iterator>
#include <random>

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

/// Keys and numbers as tables of thousands of rows have them: few values or many, close together or
/// anywhere, and sometimes of another kind near the end than before.
class LargeTables {
 public:
  explicit LargeTables(std::uint64_t seed) : random_(seed) {}

  Matrix table() {
    rows_ = 1 + below(3000);
    turn_ = below(2) == 0 ? rows_ : below(rows_);
    nulls_ = below(2) == 0 ? 0 : 1 + below(20);
    auto const made = matrix({});
    add(*made, "k", ints(), [&, span = span(), late = span()](bool isLate) {
      return Cell(static_cast<int>(below(isLate ? late : span)) - 1000);
    });
    add(*made, "j", ints(),
        [&, span = span()](bool) { return Cell(static_cast<int>(below(span) * 40503)); });
    add(*made, "t", texts(), [&, span = span()](bool isLate) {
      auto const number = std::to_string(below(span));
      return Cell(isLate ? "a text that is long " + number : number);
    });
    add(*made, "v", ints(), [&](bool) { return Cell(static_cast<int>(below(2001)) - 1000); });
    add(*made, "d", doubles(), [&](bool) {
      return Cell((static_cast<double>(below(8001)) - 4000) / 4);  // sums are exact
    });
    return made;
  }

  std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

 private:
  std::uint64_t span() {
    static constexpr std::array<std::uint64_t, 4> kSpans{3, 50, 2000, 2'000'000'000};
    return kSpans[below(kSpans.size())];
  }

  template <class Value>
  void add(moxDataMatrix& made, std::string const& name, Cells cells, Value const& value) {
    for (std::uint64_t row = 0; row < rows_; ++row) {
      bool const isNull = nulls_ != 0 && below(nulls_) == 0;
      cells.values.push_back(isNull ? Cell(null) : value(row >= turn_));
    }
    made.addColumn(column(name, cells));
  }

  std::mt19937_64 random_;
  std::uint64_t rows_ = 0;
  std::uint64_t turn_ = 0;   // the row from which values are of the other kind
  std::uint64_t nulls_ = 0;  // of so many cells one is null; 0 for none
};

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

TEST(DataMatrixAggregatorProperty, GivesTheGroupsOfLargeTablesThatADatabaseGives) {
  constexpr char const* kKeys[] = {"k", "j", "t", "k, j", "j, t", "k, j, t"};
  TestHost host(TestHost::kMemoryDatabase);
  LargeTables random(4711);
  for (int round = 0; round < 60; ++round) {
    auto const input = random.table();
    std::string const keys = kKeys[random.below(std::size(kKeys))];
    Definition definition{{},
                          {{"moxIntegralSum", "v"},
                           {"moxIntegralMin", "v"},
                           {"moxDoubleSum", "d"},
                           {"moxDoubleMin", "d"},
                           {"moxDoubleMax", "d"},
                           {"moxDoubleAvg", "d"}},
                          true};
    for (char const key : keys) {
      if (std::isalpha(key) != 0) {
        definition.indexes.emplace_back(1, key);
      }
    }
    temporaryTable(host, *input, "entrada");
    temporaryTable(host, *aggregated(host, definition, input), "saida");

    auto const difference = host.application().query(
        "select count(*), (select count(*) from saida) from (select row_number() over (order by "
        "min(rowid)), " +
            keys +
            ", sum(v), min(v), sum(d), min(d), max(d), avg(d), nullif(count(d), 0), count(*) from "
            "entrada group by " +
            keys + " intersect select rowid, * from saida)",
        "where", 0, "", 0);

    ASSERT_TRUE(difference->step());
    ASSERT_GT(difference->getInt(1), 0);
    ASSERT_EQ(difference->getInt(0), difference->getInt(1)) << "round " << round << ", by " << keys;
  }
}
