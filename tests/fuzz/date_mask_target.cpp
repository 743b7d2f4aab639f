#include <array>
#include <string>

#include "fuzz/promise.h"
#include "fuzz/targets.h"
#include "zyn/format/date_mask.h"

namespace mox::fuzz {

void readDateMask(std::string_view bytes) {
  std::string const mask(bytes);
  for (auto const& moment :
       {datetime_t(1, 1, 1), datetime_t(29, 2, 2024, 10, 20, 30), datetime_t(31, 12, 9999)}) {
    std::array<char, DateMask::kTextLimit> expected{};
    auto const parts = moment.asTM();
    auto const size = std::strftime(expected.data(), expected.size(), mask.c_str(), &*parts);
    std::string text;
    DateMask(mask).appendTo(text, moment);
    require(text == std::string_view(expected.data(), size), "a mask reads as in strftime");
  }
}

}  // namespace mox::fuzz
