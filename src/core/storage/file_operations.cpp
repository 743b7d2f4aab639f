#include "core/storage/file_operations.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "core/storage/atomic_save.h"
#include "core/storage/blob.h"
#include "core/storage/file_descriptor.h"
#include "core/storage/file_error.h"

namespace mox::core {

namespace {

/// The system would take the path only up to the NUL: another file than the one named.
void refuseNul(std::string const& action, std::string const& path) {
  if (path.find('\0') != std::string::npos) {
    throw FileError(action, path, "the path has a NUL in it");
  }
}

struct OpenFile {
  FileDescriptor file;
  std::size_t size = 0;  // as the system tells; 0 for files that it makes up while they are read
};

/// Not blocking, for opening a pipe would wait for somebody to write into it.
OpenFile openRegular(std::string const& path) {
  refuseNul("read", path);
  OpenFile opened;
  opened.file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat found = {};
  if (!opened.file || ::fstat(opened.file.get(), &found) != 0) {
    throw FileError("read", path, errno);
  }
  if (S_ISDIR(found.st_mode)) {
    throw FileError("read", path, EISDIR);
  }
  if (!S_ISREG(found.st_mode)) {
    throw FileError("read", path, "it is no regular file");
  }
  opened.size = static_cast<std::size_t>(found.st_size);
  return opened;
}

[[noreturn]] void failTooLong(std::string const& path, std::size_t maxBytes) {
  throw FileError("read", path, "it is longer than " + std::to_string(maxBytes) + " bytes");
}

/// Reads on until the file ends, for its size may have changed meanwhile.
std::string readUpTo(OpenFile const& opened, std::string const& path, std::size_t maxBytes) {
  constexpr std::size_t kStep = std::size_t{64} << 10;
  std::string bytes;
  std::size_t done = 0;
  for (std::size_t step = opened.size + 1;; step = std::max(kStep, done)) {
    // One byte more than allowed is asked for, to learn that the file has it.
    step = std::min(step - 1, maxBytes - done) + 1;
    bytes.resize(done + step);
    ssize_t const taken = readFully(opened.file.get(), bytes.data() + done, step);
    if (taken < 0) {
      throw FileError("read", path, errno);
    }
    done += static_cast<std::size_t>(taken);
    if (done > maxBytes) {
      failTooLong(path, maxBytes);
    }
    if (static_cast<std::size_t>(taken) < step) {
      bytes.resize(done);
      return bytes;
    }
  }
}

class FileCursor : public moxReadBlobCursor {
 public:
  FileCursor(FileDescriptor file, std::string path)
      : file_(std::move(file)), path_(std::move(path)) {}

  std::size_t read(void* target, std::size_t count) override {
    ssize_t const taken = readFully(file_.get(), static_cast<char*>(target), count);
    if (taken < 0) {
      throw FileError("read", path_, errno);
    }
    position_ += static_cast<std::size_t>(taken);
    return static_cast<std::size_t>(taken);
  }

  std::size_t position() const override { return position_; }

 private:
  FileDescriptor file_;
  std::string path_;
  std::size_t position_ = 0;
};

struct DirectoryCloser {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// A file that vanished since its name was read counts as none.
bool isRegularFile(DIR* directory, char const* name) {
  struct stat found = {};
  return ::fstatat(::dirfd(directory), name, &found, 0) == 0 && S_ISREG(found.st_mode);
}

}  // namespace

std::shared_ptr<moxBlob> FileOperations::readFile(std::string const& path,
                                                  std::size_t maxBytes) const {
  OpenFile const opened = openRegular(path);
  if (opened.size > maxBytes) {
    failTooLong(path, maxBytes);
  }
  return std::make_shared<Blob>(readUpTo(opened, path, maxBytes));
}

void FileOperations::saveFile(std::string const& path, moxReadBlob const& content) const {
  refuseNul("write", path);
  saveAtomically(path, content.data(), content.size());
}

std::unique_ptr<moxReadBlobCursor> FileOperations::openRead(std::string const& path) const {
  OpenFile opened = openRegular(path);
  return std::make_unique<FileCursor>(std::move(opened.file), path);
}

std::vector<std::string> FileOperations::listFiles(std::string const& directory) const {
  refuseNul("list", directory);
  std::unique_ptr<DIR, DirectoryCloser> const opened(::opendir(directory.c_str()));
  if (!opened) {
    throw FileError("list", directory, errno);
  }
  std::vector<std::string> names;
  errno = 0;
  while (dirent const* const entry = ::readdir(opened.get())) {
    if (isRegularFile(opened.get(), entry->d_name)) {
      names.emplace_back(entry->d_name);
    }
    errno = 0;
  }
  if (errno != 0) {
    throw FileError("list", directory, errno);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace mox::core
