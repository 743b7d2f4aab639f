#pragma once

#include <mutex>
#include <vector>

#include "core/session/user.h"
#include "mox/core/session.h"

namespace mox::core {

/// The user behind one session: what the directory knew of him when the session was opened, and the
/// unit that he works in now. Safe from any thread; unit and head office are each read and changed
/// whole.
class UserSession final : public moxUserSession {
 public:
  explicit UserSession(User user);

  int defaultUnit() const override;
  int headOfficeUnit() const override;
  int userId() const override { return user_.id; }
  bool worksByUnits() const override { return user_.worksByUnits; }
  std::vector<int> units() const override;
  void registerLogin(int unit) override;
  bool hasStudentModule() const override { return user_.student; }

  /// The user as the session was opened with.
  User const& user() const { return user_; }

 private:
  UserUnit const* findUnit(int id) const;

  User const user_;
  mutable std::mutex mutex_;
  UserUnit current_;  // guarded by mutex_
};

}  // namespace mox::core
