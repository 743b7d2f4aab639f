#include "core/app/document_folder.h"

#include <filesystem>
#include <system_error>

#include "core/storage/file_operations.h"
#include "core/storage/z_compress.h"
#include "mox/core/blob.h"

namespace mox::core {

namespace {

// The two bytes of a zlib stream: deflate with the usual window, and a sum that is a multiple
// of 31. No document begins with them: XML opens with "<", a blank or a byte order mark.
bool looksCompressed(moxReadBlob const& content) {
  if (content.size() < 2) {
    return false;
  }
  auto const* const bytes = reinterpret_cast<unsigned char const*>(content.data());
  return bytes[0] == 0x78 && (bytes[0] * 256 + bytes[1]) % 31 == 0;
}

std::shared_ptr<moxReadBlob> readDocument(std::filesystem::path const& file) {
  std::shared_ptr<moxReadBlob> content = FileOperations().readFile(file.string());
  return looksCompressed(*content) ? ZCompress().decompress(*content) : content;
}

}  // namespace

std::vector<std::shared_ptr<moxReadBlob>> readDocuments(std::string const& directory) {
  std::error_code ignored;
  if (directory.empty() || !std::filesystem::is_directory(directory, ignored)) {
    return {};
  }
  std::vector<std::shared_ptr<moxReadBlob>> documents;
  for (auto const& name : FileOperations().listFiles(directory)) {
    documents.push_back(readDocument(std::filesystem::path(directory) / name));
  }
  return documents;
}

}  // namespace mox::core
