#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"

class moxBlob;
class moxReadBlob;
class moxReadBlobCursor;

/// Files of the machine. Registered as "moxFileOperations". Keeps no state between calls: safe from
/// any thread. Failures are moxErrors whose message names the file and the reason, with the
/// system's error number as their code. A path with a NUL in it is refused.
class moxFileOperations : public virtual moxPluginBase {
 public:
  /// How much readFile takes unless told otherwise: 256 MiB.
  static constexpr std::size_t kDefaultMaxBytes = std::size_t{256} << 20;

  /// The whole content, never an empty pointer. Only regular files are read: a directory, a pipe or
  /// a device is an error, and so is a file of more than `maxBytes`.
  virtual std::shared_ptr<moxBlob> readFile(std::string const& path,
                                            std::size_t maxBytes = kDefaultMaxBytes) const = 0;

  /// Makes `content` the whole content of the file. Other readers see the old file or the new one,
  /// never a part, and the new one is on disk when the call returns. A file that was there keeps
  /// its mode; one behind a symbolic link is replaced where it lies. After a failure the old file
  /// is as it was and nothing is left behind. A device or pipe is written to in place.
  virtual void saveFile(std::string const& path, moxReadBlob const& content) const = 0;

  /// Opens a regular file at its first byte; the cursor owns the open file and closes it. Its read
  /// gives bytes straight from the file and throws moxError when the system fails.
  virtual std::unique_ptr<moxReadBlobCursor> openRead(std::string const& path) const = 0;

  /// Names, without the path, of the regular files in a directory (also those behind a symbolic
  /// link), in ascending byte order. Subdirectories are not visited.
  virtual std::vector<std::string> listFiles(std::string const& directory) const = 0;
};
