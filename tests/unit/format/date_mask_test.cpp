#include "zyn/format/date_mask.h"

#include <array>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace mox_test {

namespace {

template <class DateOrMoment>
std::string byLibrary(std::string const& mask, DateOrMoment const& value) {
  std::array<char, DateMask::kTextLimit> text{};
  auto const parts = value.asTM();
  return {text.data(), std::strftime(text.data(), text.size(), mask.c_str(), &*parts)};
}

template <class DateOrMoment>
std::string written(std::string const& mask, DateOrMoment const& value) {
  std::string text = "kept";
  DateMask(mask).appendTo(text, value);
  EXPECT_EQ(text.substr(0, 4), "kept");
  return text.substr(4);
}

// Conversions by hand, conversions of the library, and masks that are broken.
constexpr std::array kMasks = {"%d/%m/%Y",
                               "%d/%m/%y %H:%M:%S",
                               "%F %T",
                               "%D",
                               "%Y%m%d%H%M%S",
                               "100%%",
                               "%d de %B",
                               "%e/%m",
                               "%-d/%-m",
                               "%j %U %w %u",
                               "%I:%M %p",
                               "%G-W%V",
                               "%Ey %Od",
                               "%H%",
                               "%",
                               "%q",
                               "sem data",
                               "%C %h %n%t",
                               "%10Y|%_5d",
                               "%%d %d",
                               "%z%Z",
                               "",
                               "%x %X",
                               "%R às %r"};

TEST(DateMask, MomentsReadAsStrftimeWritesThem) {
  std::mt19937_64 random(20240305);
  std::uniform_int_distribution<std::int64_t> seconds(datetime_t(1, 1, 1).asTime_t(),
                                                      datetime_t(31, 12, 9999).asTime_t());
  for (int i = 0; i < 20'000; ++i) {
    auto const moment = datetime_t::fromTime_t(seconds(random));
    for (std::string const mask : kMasks) {
      ASSERT_EQ(written(mask, moment), byLibrary(mask, moment)) << mask;
    }
  }
}

TEST(DateMask, EveryDayOfFourCenturiesReadsAsStrftimeWritesIt) {
  for (date_t day(1, 1, 1800); day.year() <= 2200; day.adjust(1, 0, 0)) {
    ASSERT_EQ(written("%d/%m/%Y", day), byLibrary("%d/%m/%Y", day));
  }
}

TEST(DateMask, FirstAndLastMomentsReadAsStrftimeWritesThem) {
  for (auto const& moment :
       {datetime_t(1, 1, 1), datetime_t(31, 12, 999, 23, 59, 59), datetime_t(1, 1, 1000),
        datetime_t(29, 2, 2000, 12, 0, 1), datetime_t(31, 12, 1969, 23, 59, 59),
        datetime_t(31, 12, 9999, 23, 59, 59)}) {
    EXPECT_EQ(written("%d/%m/%Y %T", moment), byLibrary("%d/%m/%Y %T", moment));
  }
}

TEST(DateMask, TextOf99BytesIsWrittenAndOneOf100IsDropped) {
  datetime_t const moment(5, 3, 2024);
  for (std::string const conversion : {"%d", "%e"}) {
    EXPECT_EQ(written(std::string(97, 'x') + conversion, moment).size(), 99U);
    EXPECT_EQ(written(std::string(98, 'x') + conversion, moment), "");
    EXPECT_EQ(written("%500d" + conversion, moment), "");
  }
}

TEST(DateMask, EndsAtANul) {
  EXPECT_EQ(written(std::string("%d\0%m", 5), date_t(5, 3, 2024)), "05");
}

TEST(DateMask, MidnightOfADay) {
  EXPECT_EQ(written("%H:%M:%S", date_t(5, 3, 2024)), "00:00:00");
}

TEST(DateMask, PartsWithoutABreakDownKeepTheirHour) {
  std::tm parts{};
  parts.tm_mday = 5;
  parts.tm_mon = 0;
  parts.tm_year = 118;
  parts.tm_hour = 10;
  auto const normal = normalizedMoment(parts);
  EXPECT_EQ(normal.tm_hour, 10);
  EXPECT_EQ(normal.tm_yday, 4);
  EXPECT_EQ(normal.tm_wday, 5);
  EXPECT_EQ(normalizedDay(parts).tm_wday, 5);
}

}  // namespace

}  // namespace mox_test
