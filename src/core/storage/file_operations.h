#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "mox/core/file_operations.h"

namespace mox::core {

/// Files through the system's own calls.
class FileOperations : public moxFileOperations {
 public:
  std::string name() const override { return "moxFileOperations"; }
  std::shared_ptr<moxBlob> readFile(std::string const& path,
                                    std::size_t maxBytes = kDefaultMaxBytes) const override;
  void saveFile(std::string const& path, moxReadBlob const& content) const override;
  std::unique_ptr<moxReadBlobCursor> openRead(std::string const& path) const override;
  std::vector<std::string> listFiles(std::string const& directory) const override;
};

}  // namespace mox::core
