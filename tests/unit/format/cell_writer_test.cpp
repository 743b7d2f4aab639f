#include "zyn/format/cell_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "support/random_tables.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/format/text_formatter.h"

namespace mox_test {

namespace {

class CellWriterTest : public FormatterFixture {
 protected:
  using Column = std::shared_ptr<moxDataMatrixColumn>;
  using Formatter = std::shared_ptr<moxGenericFormatter>;

  /// All cells, one behind the other, in a buffer that has to grow.
  static std::string written(CellText const& text, unsigned int rows) {
    CellWriter writer(text);
    TextBuffer buffer(1);
    char* place = buffer.begin();
    for (unsigned int row = 0; row < rows; ++row) {
      place = buffer.room(place, writer.room() + 1);
      place = writer.write(buffer, place, writer.room() + 1, row);
      *place++ = '|';
    }
    return {buffer.begin(), place};
  }

  static std::string plain(CellText const& text, unsigned int rows) {
    std::string all;
    for (unsigned int row = 0; row < rows; ++row) {
      text.appendTo(all, row);
      all += '|';
    }
    return all;
  }

  static void expectTheSame(Column const& column, Formatter const& formatter) {
    CellText const text(column, formatter);
    unsigned int const rows = column->numRows() + 2;  // beyond the end as well
    EXPECT_EQ(written(text, rows), plain(text, rows));
  }

  Formatter newFormatter(std::mt19937& random, moxDataMatrixTypes::Types type) {
    Formatter const made = ofKind(random, type);
    if (random() % 3 == 0) {
      made->setPrefix("R$ ");
      made->setSuffix(random() % 2 == 0 ? " e mais" : "");
    }
    return made;
  }

 private:
  Formatter ofKind(std::mt19937& random, moxDataMatrixTypes::Types type) {
    if (type == moxDataMatrixTypes::Int) {
      return integral(random);
    }
    if (type == moxDataMatrixTypes::Double) {
      return decimal(random);
    }
    if (type == moxDataMatrixTypes::Date) {
      auto const dates = host_.get<moxDateAsString>("moxDateFormatter");
      constexpr char const* kMasks[] = {"%d/%m/%Y", "%d/%m/%Y %H:%M:%S", "%A", "", "ano %y"};
      dates->setMask(kMasks[random() % std::size(kMasks)]);
      return dates;
    }
    return host_.get<moxGenericFormatter>("moxTextFormatter");
  }

  Formatter integral(std::mt19937& random) {
    auto const made = host_.get<moxIntegralAsString>("moxIntegralFormatter");
    made->setGroupCount(static_cast<char>(random() % 5));
    made->setGroupSeparator('.');
    if (random() % 4 == 0) {
      made->setSpan(random() % 90, '0');
    }
    return made;
  }

  Formatter decimal(std::mt19937& random) {
    auto const made = host_.get<moxDecimalAsString>("moxDecimalFormatter");
    made->setGroupCount(static_cast<char>(random() % 5));
    made->setGroupSeparator('.');
    made->setDecimalSeparator(',');
    made->setDecimalPrecision(random() % 22);
    made->setAllowShrinkPrecision(random() % 4 == 0);
    if (random() % 4 == 0) {
      made->setSpan(random() % 90, '0');
    }
    return made;
  }
};

TEST_F(CellWriterTest, WritesWhatCellTextGives) {
  std::mt19937 random(7);
  RandomTables tables(8);
  for (int round = 0; round < 3000; ++round) {
    auto const type = tables.type();
    expectTheSame(tables.column("c", type, static_cast<unsigned int>(random() % 40)),
                  newFormatter(random, type));
  }
}

TEST_F(CellWriterTest, WritesNumbersOfAllSizes) {
  std::mt19937 random(9);
  for (int round = 0; round < 3000; ++round) {
    Cells numbers = ints();
    Cells doubles = mox_test::doubles();
    for (int i = 0; i < 20; ++i) {
      auto const shift = random() % 32;
      numbers.values.emplace_back(static_cast<int>(random() >> shift) *
                                  (random() % 2 == 0 ? -1 : 1));
      doubles.values.emplace_back(
          std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 120) - 70));
    }
    expectTheSame(column("i", numbers), newFormatter(random, moxDataMatrixTypes::Int));
    expectTheSame(column("d", doubles), newFormatter(random, moxDataMatrixTypes::Double));
  }
}

TEST_F(CellWriterTest, WritesTextsOfAllLengths) {
  Cells lengths = texts();
  for (std::size_t length = 0; length < 100; ++length) {
    lengths.values.emplace_back(std::string(length, static_cast<char>('a' + length % 26)));
  }
  expectTheSame(column("t", lengths), host_.get<moxGenericFormatter>("moxTextFormatter"));
}

TEST_F(CellWriterTest, YearsOfFewDigitsAreWrittenAsTheLibraryDoes) {
  Cells days = dates("0999-12-31", "1000-01-01", "9999-12-31", null);
  days.values.emplace_back(datetime_t());
  auto const formatter = host_.get<moxDateAsString>("moxDateFormatter");
  formatter->setMask("%d/%m/%Y");
  formatter->setPrefix("em ");
  expectTheSame(column("d", days), formatter);
}

TEST_F(CellWriterTest, ABlobHasNoText) {
  expectTheSame(column("b", blobs(blob("x"), null)), nullptr);
}

}  // namespace

}  // namespace mox_test
