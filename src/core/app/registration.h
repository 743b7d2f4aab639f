#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/registry.h"

namespace mox::core {

/// What a library has entered so far, before any of it is seen by others. A library that fails
/// half-way leaves nothing behind: its registration is dropped whole. Used by the thread that loads
/// the library.
class Registration final : public moxPluginRegistry {
 public:
  struct ClassEntry {
    std::unique_ptr<moxCorePluginBasicContainer> container;
    std::string name;
    std::string libraryName;
  };

  /// `taken` are the names that are registered already.
  explicit Registration(std::set<std::string> taken) : taken_(std::move(taken)) {}

  /// Each throws moxError for what it cannot take, and keeps the first such failure.
  void registerClass(std::unique_ptr<moxCorePluginBasicContainer> container) override;
  void registerService(std::unique_ptr<moxServiceBase> service) override;
  void setLibraryName(std::string const& libraryName) override;

  /// The first failure's message, for a library that swallowed the exception; empty when there was
  /// none.
  std::string const& failure() const { return failure_; }

  std::vector<ClassEntry> takeClasses() { return std::move(classes_); }
  std::vector<std::unique_ptr<moxServiceBase>> takeServices() { return std::move(services_); }

 private:
  [[noreturn]] void fail(std::string message);
  void demandLibraryName(std::string const& what);

  std::set<std::string> taken_;
  std::string libraryName_;
  std::string failure_;
  std::vector<ClassEntry> classes_;
  std::vector<std::unique_ptr<moxServiceBase>> services_;
};

}  // namespace mox::core
