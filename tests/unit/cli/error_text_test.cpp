#include "cli/error_text.h"

#include <new>

#include <gtest/gtest.h>

#include "mox/core/error.h"

namespace mox::cli {
namespace {

class ServerError : public moxDefaultErrorImpl<moxError> {
 public:
  ServerError(std::string message, std::string code)
      : moxDefaultErrorImpl(std::move(message), {"statement: select"}) {
    setErrorCode(std::move(code));
  }
};

TEST(ErrorLine, JoinsMessageCodeAndDetails) {
  EXPECT_EQ(errorLine(ServerError("no such table: x", "1")),
            "no such table: x (code 1); statement: select");
}

TEST(ErrorLine, DoesNotRepeatACodeThatTheMessageHolds) {
  EXPECT_EQ(errorLine(ServerError("error 1146: no such table", "1146")),
            "error 1146: no such table; statement: select");
}

TEST(ErrorLine, IsOneLineWhateverTheServerSays) {
  EXPECT_EQ(errorLine(moxDefaultErrorImpl<moxError>("near\n'x'\x1b[0m", {"a\nb"})),
            "near 'x'␛[0m; a b");
}

TEST(ErrorLine, StaysReadableForHugeMessages) {
  auto const line = errorLine(std::runtime_error(std::string(100000, 'x')));
  EXPECT_EQ(line.size(), 1999 + std::string("…").size());
}

TEST(ErrorLine, NamesMissingMemory) {
  EXPECT_EQ(errorLine(std::bad_alloc()), "out of memory");
}

}  // namespace
}  // namespace mox::cli
