// The same rows give the same matrix, whichever database holds them and whichever road they take.

#include <gtest/gtest.h>

#include <random>

#include "contract/loader_fixture.h"
#include "support/foreign_column.h"

namespace mox_test {

namespace {

constexpr unsigned int kRowsPerSeed = 2100;  // two blocks of the loader and a part
constexpr unsigned int kSeeds = 5;

constexpr char const* kCreate =
    "create table dados (id int primary key, i int, d double, t varchar(400), m datetime, b blob)";
constexpr char const* kSelect = "select id, i, d, t, m, b from dados order by id";

/// Whole characters of one to four bytes, so that every database takes the text.
std::string randomText(std::mt19937& random) {
  char const* const characters[] = {"a", "Z", " ", "'", "%", "é", "ç", "€", "😀", "\n"};
  std::size_t const lengths[] = {0, 1, 5, 11, 12, 13, 40, 99};
  std::string text;
  for (std::size_t left = lengths[random() % std::size(lengths)]; left > 0; --left) {
    text += characters[random() % std::size(characters)];
  }
  return text;
}

double randomDouble(std::mt19937& random) {
  double const special[] = {0.0, -1.5, 1e300, -1e-300, 0.1, 123456789.123456789};
  return random() % 3 == 0 ? special[random() % std::size(special)]
                           : (static_cast<double>(random()) - 2e9) / 1024.0;
}

datetime_t randomMoment(std::mt19937& random) {
  auto const part = [&](unsigned int from, unsigned int to) {
    return static_cast<int>(from + random() % (to - from + 1));
  };
  return {part(1, 28), part(1, 12), part(1000, 9999), part(0, 23), part(0, 59), part(0, 59)};
}

/// A blob that is bound: only its bytes matter.
std::shared_ptr<moxReadBlob> randomBlob(std::mt19937& random) {
  std::string bytes(random() % 40, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random() % 256);
  }
  return blob(bytes);
}

void bindRow(moxDatabaseConnection::PreparedStatement& insert, int id, std::mt19937& random) {
  insert.bindInt(0, id);
  for (int field = 1; field <= 5; ++field) {
    insert.bindNull(field);
  }
  auto const hasValue = [&] { return random() % 6 != 0; };
  if (hasValue()) {
    insert.bindInt(1, static_cast<int>(random()));
  }
  if (hasValue()) {
    insert.bindDouble(2, randomDouble(random));
  }
  if (hasValue()) {
    insert.bindString(3, randomText(random));
  }
  if (hasValue()) {
    insert.bindDateTime(4, randomMoment(random));
  }
  if (hasValue()) {
    insert.bindBlob(5, *randomBlob(random));
  }
}

void fill(TestDatabase& database, unsigned int seed) {
  std::mt19937 random(seed);
  database.run(kCreate);
  database.run("begin");
  auto insert = database.connection().prepare("insert into dados values (?, ?, ?, ?, ?, ?)");
  for (unsigned int row = 0; row < kRowsPerSeed; ++row) {
    bindRow(*insert, static_cast<int>(row), random);
    insert->execute();
  }
  insert.reset();
  database.run("commit");
}

/// What the loader makes of a database of its own kind; cells are kept as a copy that needs no
/// host.
std::shared_ptr<moxDataMatrix> layoutByCells() {
  auto const layout =
      matrix({{"i", ints()}, {"d", doubles()}, {"t", texts()}, {"m", dates()}, {"b", blobs()}});
  layout->addColumn(std::make_shared<ForeignIntColumn>("id", std::vector<std::optional<int>>{}));
  return layout;
}

class LoaderRoads : public LoaderOnEveryDatabase {};

MOX_ON_EVERY_DATABASE(LoaderRoads);

TEST_P(LoaderRoads, BlocksAndCellsGiveEqualMatrices) {
  unsigned int const seed = 20240305;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  fill(db, seed);
  auto const byCells = on_.load(kSelect, layoutByCells());
  auto const byBlocks = on_.load(kSelect, matrix({{"i", ints()},
                                                  {"d", doubles()},
                                                  {"t", texts()},
                                                  {"m", dates()},
                                                  {"b", blobs()},
                                                  {"id", ints()}}));
  EXPECT_EQ(byCells->rowCount(), kRowsPerSeed);
  EXPECT_TRUE(sameMatrix(*byBlocks, *byCells));
}

TEST(LoaderEquality, SqliteAndMariadbGiveEqualMatrices) {
  if (!hasMariadb()) {
    GTEST_SKIP() << "no MariaDB server named";
  }
  for (unsigned int seed = 1; seed <= kSeeds; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    TestDatabase sqlite(DatabaseKind::kSqlite);
    TestDatabase mariadb(DatabaseKind::kMariadb);
    fill(sqlite, seed);
    fill(mariadb, seed);
    LoaderOn on(sqlite.url());
    auto const fromSqlite = on.load(kSelect);
    on.loader().setDBConnection(&mariadb.connection());
    auto const fromMariadb = on.load(kSelect);
    EXPECT_EQ(fromSqlite->rowCount(), kRowsPerSeed);
    EXPECT_TRUE(sameMatrix(*fromMariadb, *fromSqlite));
  }
}

}  // namespace

}  // namespace mox_test
