#pragma once

#include <string>

#include "mox/core/service.h"

/// Fills the process's cache, when the application starts, with the binary collections of the
/// directories that the settings name in their section "ZYNCollectionDirs". Not thread-safe: the
/// application starts and stops it.
class ZYNCLoaderService final : public moxServiceBase {
 public:
  std::string name() const override { return "ZYNCLoaderService"; }

  /// Enters the files whose names end in ".zcf": directories in the order of the settings, files by
  /// the bytes of their names. Throws moxError, with the file's name, at the first one that cannot
  /// be read; those before it are in the cache then. A directory that is not there gives nothing.
  void start() override;

  /// Empties the process's cache.
  void stop() override;

  bool canStart() override { return true; }
  bool verifyProperties(Properties properties) override {
    return properties == kStartsWithApplication;
  }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibraryName() const override { return parentLibraryName_; }

 private:
  std::string parentLibraryName_;
};
