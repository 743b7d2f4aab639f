#pragma once

#include <memory>
#include <string>
#include <vector>

class moxReadBlob;

namespace mox::core {

/// The content of every file of a folder, by the byte order of the files' names; what is compressed
/// comes decompressed. Empty for an empty name, or when there is no such folder. Throws moxError
/// for a file that cannot be read or is damaged.
std::vector<std::shared_ptr<moxReadBlob>> readDocuments(std::string const& directory);

}  // namespace mox::core
