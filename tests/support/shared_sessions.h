#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/session/session.h"
#include "mox/zyn/items/zyn_collection.h"
#include "support/test_host.h"

/// What tests of many sessions over one set of definitions begin with.

/// The collection of an XML text, whose root is a "moxZYNCollection". Throws std::invalid_argument
/// for a text that is none, so that no test runs without its definitions.
std::shared_ptr<moxZYNCollection> readCollection(TestHost& host, std::string const& xml);

/// Puts the text's definitions where every session finds them; gives their collection.
std::shared_ptr<moxZYNCollection> shareDefinitions(TestHost& host, std::string const& xml);

/// Sessions of so many users, numbered from 1, each of whom works in one of the units 1 to `units`,
/// in turns, and sees no other.
std::vector<std::shared_ptr<mox::core::Session>> openUnitSessions(TestHost& host, int count,
                                                                  int units);
