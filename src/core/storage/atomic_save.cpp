#include "core/storage/atomic_save.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <optional>

#include "core/storage/behind_links.h"
#include "core/storage/file_descriptor.h"
#include "core/storage/file_error.h"

namespace mox::core {

namespace {

char const kAction[] = "write";

void check(int errorNumber, std::string const& path) {
  if (errorNumber != 0) {
    throw FileError(kAction, path, errorNumber);
  }
}

/// What stands at the path, behind symbolic links; nothing when it is free.
std::optional<struct stat> whatIsAt(std::string const& path) {
  struct stat found = {};
  if (::stat(path.c_str(), &found) == 0) {
    return found;
  }
  if (errno != ENOENT) {
    throw FileError(kAction, path, errno);
  }
  return std::nullopt;
}

void writeInPlace(std::string const& path, char const* bytes, std::size_t count) {
  // Opening must not wait for a reader of a pipe; writing must wait for it.
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  check(file ? 0 : errno, path);
  check(::fcntl(file.get(), F_SETFL, 0) == 0 ? 0 : errno, path);
  check(writeFully(file.get(), bytes, count), path);
  check(file.close(), path);
}

/// A new file in the directory of the one to be saved, removed again unless it is renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::filesystem::path const& directory) {
    do {
      path_ = directory / (".mox-" + std::to_string(::getpid()) + "-" + std::to_string(next()));
      file_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    } while (!file_ && errno == EEXIST);
    error_ = file_ ? 0 : errno;
  }

  ~TemporaryFile() {
    if (error_ == 0 && !renamed_) {
      ::unlink(path_.c_str());
    }
  }

  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;

  /// Each gives 0, or the error number.
  int openError() const { return error_; }
  int setMode(mode_t mode) { return ::fchmod(file_.get(), mode) == 0 ? 0 : errno; }
  int write(char const* bytes, std::size_t count) { return writeFully(file_.get(), bytes, count); }
  int sync() { return ::fsync(file_.get()) == 0 ? 0 : errno; }
  int close() { return file_.close(); }
  int renameTo(std::filesystem::path const& target) {
    renamed_ = ::rename(path_.c_str(), target.c_str()) == 0;
    return renamed_ ? 0 : errno;
  }

 private:
  static unsigned next() {
    static std::atomic<unsigned> counter = 0;
    return counter++;
  }

  std::filesystem::path path_;
  FileDescriptor file_;
  int error_ = 0;
  bool renamed_ = false;
};

/// Makes the rename last. A file system that cannot sync a directory says EINVAL; there it lasts
/// as well as that file system can make it.
void syncDirectory(std::filesystem::path const& directory, std::string const& path) {
  FileDescriptor const opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened && ::fsync(opened.get()) != 0 && errno != EINVAL) {
    throw FileError(kAction, path, errno);
  }
}

void replaceFile(std::filesystem::path const& target, std::optional<mode_t> mode,
                 std::string const& path, char const* bytes, std::size_t count) {
  std::filesystem::path const directory =
      target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
  TemporaryFile temporary(directory);
  check(temporary.openError(), path);
  if (mode) {
    check(temporary.setMode(*mode), path);
  }
  check(temporary.write(bytes, count), path);
  check(temporary.sync(), path);
  check(temporary.close(), path);
  check(temporary.renameTo(target), path);
  syncDirectory(directory, path);
}

}  // namespace

void saveAtomically(std::string const& path, char const* bytes, std::size_t count) {
  std::optional<struct stat> const found = whatIsAt(path);
  if (!found) {
    replaceFile(path, std::nullopt, path, bytes, count);
    return;
  }
  if (S_ISDIR(found->st_mode)) {
    throw FileError(kAction, path, EISDIR);
  }
  if (!S_ISREG(found->st_mode)) {
    writeInPlace(path, bytes, count);
    return;
  }
  // A rename asks for rights on the directory only: a file that is not to be written stays.
  check(::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno, path);
  replaceFile(behindLinks(path), found->st_mode & 07777, path, bytes, count);
}

}  // namespace mox::core
