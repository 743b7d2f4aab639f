#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "mox/zyn/format/properties_collection.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/format/date_formatter.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/integral_formatter.h"
#include "zyn/format/text_filter.h"

namespace mox_test {

namespace {

constexpr int kThreads = 8;
constexpr int kTexts = 2000;

class FormatterThreads : public FormatterFixture {
 protected:
  // Every thread asks for the same text many times; none may differ. The first uses, which take
  // the separators over, fall together.
  template <class Ask>
  void expectAllToRead(std::string const& expected, Ask const& ask) {
    std::atomic<int> waiting = kThreads;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        --waiting;
        while (waiting > 0) {
          std::this_thread::yield();
        }
        for (int text = 0; text < kTexts; ++text) {
          wrong += ask() == expected ? 0 : 1;
        }
      });
    }
    for (auto& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(wrong, 0);
  }
};

TEST_F(FormatterThreads, ShareADecimalFormatter) {
  DecimalFormatter formatter;
  formatter.setGroupCount(3);
  formatter.setDecimalPrecision(2);
  expectAllToRead("1,234.50", [&] { return formatter.asString(1234.5L); });
}

TEST_F(FormatterThreads, ShareAnIntegralFormatter) {
  IntegralFormatter formatter;
  formatter.setGroupCount(3);
  expectAllToRead("1,234", [&] { return formatter.asString(1234LL); });
}

TEST_F(FormatterThreads, ShareADateFormatterByHandAndThroughTheLibrary) {
  DateFormatter formatter;
  formatter.setMask("%d/%m/%Y");
  expectAllToRead("05/03/2024", [&] { return formatter.asString(date_t(5, 3, 2024)); });
  formatter.setMask("%j");
  expectAllToRead("065", [&] { return formatter.asString(date_t(5, 3, 2024)); });
}

TEST_F(FormatterThreads, ShareATextFilter) {
  TextFilter filter;
  filter.setAsciiOnly(true, "[^a-z]");
  expectAllToRead("maca", [&] { return filter.asString(std::string("1 maçã")); });
}

TEST_F(FormatterThreads, GetTheSamePropertiesOfADateFormatter) {
  DateFormatter formatter;
  formatter.setMask("%d/%m/%Y");
  expectAllToRead("4 %d/%m/%Y", [&] {
    auto const collection = formatter.getProperties();
    auto const mask = std::dynamic_pointer_cast<moxStringProperty const>(
        collection->findProperty("mask", typeid(moxStringProperty)));
    return std::to_string(collection->getProperties().size()) + " " + mask->get();
  });
}

}  // namespace

}  // namespace mox_test
