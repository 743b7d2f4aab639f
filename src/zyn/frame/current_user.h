#pragma once

#include <memory>

#include "mox/core/session.h"
#include "mox/zyn/frame/plugin_entry.h"

/// The user that the calling thread works for; empty without a session service, outside a session,
/// and when nobody is logged in.
inline std::shared_ptr<moxUserSession> currentUser() {
  return moxSession != nullptr ? moxSession->currentUserSession() : nullptr;
}
