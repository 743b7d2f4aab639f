#include "cli/output/output_target.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "cli/output/interrupt_cleanup.h"
#include "core/storage/behind_links.h"
#include "core/storage/file_descriptor.h"
#include "core/storage/file_error.h"

namespace mox::cli {

namespace {

[[noreturn]] void fail(std::string const& what, int errorNumber) {
  throw core::FileError("write", what, errorNumber);
}

/// The program ignores the signal, so that a lost database server is an error and not a death; for
/// its own output it dies of the signal after all, as a shell expects of a program in a pipe.
[[noreturn]] void endByBrokenPipe() {
  constexpr int kStatusOfSignal = 128;
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  _exit(kStatusOfSignal + SIGPIPE);
}

void writeAll(int descriptor, std::string_view bytes, std::string const& what) {
  int const errorNumber = core::writeFully(descriptor, bytes.data(), bytes.size());
  if (errorNumber == EPIPE) {
    endByBrokenPipe();
  }
  if (errorNumber != 0) {
    fail(what, errorNumber);
  }
}

int terminalWidth(int descriptor) {
  winsize size = {};
  return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

class StandardOutput : public OutputTarget {
 public:
  void write(std::string_view bytes) override { writeAll(STDOUT_FILENO, bytes, "standard output"); }

  bool isTerminal() const override { return isatty(STDOUT_FILENO) != 0; }
  int width() const override { return terminalWidth(STDOUT_FILENO); }

  /// Closing is where a network file system owns up to a full disk.
  void commit() override {
    if (int const copy = dup(STDOUT_FILENO); copy < 0 || close(copy) != 0) {
      fail("standard output", errno);
    }
  }
};

/// A device or a pipe that stands at the path.
class SpecialFile : public OutputTarget {
 public:
  explicit SpecialFile(std::string path)
      : path_(std::move(path)), file_(open(path_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY)) {
    if (!file_) {
      fail(path_, errno);
    }
  }

  void write(std::string_view bytes) override { writeAll(file_.get(), bytes, path_); }
  bool isTerminal() const override { return isatty(file_.get()) != 0; }
  int width() const override { return terminalWidth(file_.get()); }

  void commit() override {
    if (int const errorNumber = file_.close(); errorNumber != 0) {
      fail(path_, errorNumber);
    }
  }

 private:
  std::string path_;
  core::FileDescriptor file_;
};

mode_t usualMode() {
  mode_t const mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

/// The new file beside the final one, until commit.
class ReplacingFile : public OutputTarget {
 public:
  /// `mode` is that of the file replaced, absent where there is none. `shownPath` is what messages
  /// call the file.
  ReplacingFile(std::filesystem::path path, std::optional<mode_t> mode, std::string shownPath)
      : path_(std::move(path)),
        shownPath_(std::move(shownPath)),
        newPath_(path_.parent_path() / ".zyn-XXXXXX") {
    HeldInterrupts const held;
    file_ = core::FileDescriptor(mkostemp(newPath_.data(), O_CLOEXEC));
    if (!file_) {
      fail(shownPath_, errno);
    }
    cleanup_.emplace(newPath_);
    fchmod(file_.get(), mode.value_or(usualMode()));
  }
  ReplacingFile(ReplacingFile const&) = delete;
  ReplacingFile& operator=(ReplacingFile const&) = delete;

  ~ReplacingFile() override {
    if (!committed_ && cleanup_) {
      unlink(newPath_.c_str());
    }
  }

  void write(std::string_view bytes) override { writeAll(file_.get(), bytes, shownPath_); }
  bool isTerminal() const override { return false; }
  int width() const override { return 0; }

  void commit() override {
    if (fsync(file_.get()) != 0) {
      fail(shownPath_, errno);
    }
    if (int const errorNumber = file_.close(); errorNumber != 0) {
      fail(shownPath_, errorNumber);
    }
    if (rename(newPath_.c_str(), path_.c_str()) != 0) {
      fail(shownPath_, errno);
    }
    committed_ = true;
  }

 private:
  std::filesystem::path path_;
  std::string shownPath_;
  std::string newPath_;
  core::FileDescriptor file_;
  std::optional<InterruptCleanup> cleanup_;
  bool committed_ = false;
};

}  // namespace

std::unique_ptr<OutputTarget> openStandardOutput() {
  return std::make_unique<StandardOutput>();
}

std::unique_ptr<OutputTarget> openOutputFile(std::string const& path) {
  struct stat existing = {};
  if (stat(path.c_str(), &existing) != 0) {
    return std::make_unique<ReplacingFile>(path, std::nullopt, path);
  }
  if (S_ISDIR(existing.st_mode)) {
    fail(path, EISDIR);
  }
  if (!S_ISREG(existing.st_mode)) {
    return std::make_unique<SpecialFile>(path);
  }
  if (access(path.c_str(), W_OK) != 0) {
    fail(path, errno);
  }
  return std::make_unique<ReplacingFile>(core::behindLinks(path), existing.st_mode & 07777, path);
}

}  // namespace mox::cli
