#include "core/session/user_session.h"

#include <gtest/gtest.h>

#include "mox/core/error.h"

using mox::core::User;
using mox::core::UserSession;

namespace {

User maria() {
  return {.id = 7,
          .login = "maria",
          .defaultUnit = 3,
          .units = {{3, 1}, {4, 1}, {9, 8}},
          .worksByUnits = true,
          .student = true};
}

}  // namespace

TEST(UserSession, TellsWhatTheDirectoryKnew) {
  UserSession const session(maria());
  EXPECT_EQ(session.userId(), 7);
  EXPECT_EQ(session.defaultUnit(), 3);
  EXPECT_EQ(session.headOfficeUnit(), 1);
  EXPECT_EQ(session.units(), (std::vector<int>{3, 4, 9}));
  EXPECT_TRUE(session.worksByUnits());
  EXPECT_TRUE(session.hasStudentModule());
}

TEST(UserSession, WithoutAUnitDefaultAndHeadOfficeAre0) {
  UserSession const session(User{.id = 1});
  EXPECT_EQ(session.defaultUnit(), 0);
  EXPECT_EQ(session.headOfficeUnit(), 0);
  EXPECT_TRUE(session.units().empty());
}

TEST(UserSession, RegisterLoginChangesUnitAndHeadOfficeTogether) {
  UserSession session(maria());
  session.registerLogin(9);
  EXPECT_EQ(session.defaultUnit(), 9);
  EXPECT_EQ(session.headOfficeUnit(), 8);
}

TEST(UserSession, RegisterLoginRefusesAForeignUnitAndChangesNothing) {
  UserSession session(maria());
  try {
    session.registerLogin(5);
    FAIL() << "a foreign unit was taken";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "user 'maria' has no right to unit 5");
  }
  EXPECT_EQ(session.defaultUnit(), 3);
  EXPECT_EQ(session.headOfficeUnit(), 1);
}

TEST(UserSession, RegisterLoginRefusesUnit0) {
  UserSession session(maria());
  EXPECT_THROW(session.registerLogin(0), moxError);
}
