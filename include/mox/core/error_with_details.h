#pragma once

#include <string>
#include <vector>

#include "mox/core/error.h"

/// A failure as it was, with further details: where it happened is known further up than what went
/// wrong.
class moxErrorWithDetails final : public moxError {
 public:
  moxErrorWithDetails(moxError const& cause, std::vector<std::string> const& ahead,
                      std::vector<std::string> const& behind = {})
      : message_(cause.errorMessage()), code_(cause.errorCode()), details_(cause.errorDetails()) {
    details_.insert(details_.begin(), ahead.begin(), ahead.end());
    details_.insert(details_.end(), behind.begin(), behind.end());
  }

  std::string errorMessage() const override { return message_; }
  std::vector<std::string> errorDetails() const override { return details_; }
  std::string errorCode() const override { return code_; }

 private:
  std::string message_;
  std::string code_;
  std::vector<std::string> details_;
};
