#include "fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  mox::fuzz::readExpression(std::string_view(reinterpret_cast<char const*>(data), size));
  return 0;
}
