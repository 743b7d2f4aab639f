#pragma once

#include <memory>
#include <string>

#include "cli/output/output_buffer.h"

namespace mox::cli {

/// The place that the user wants the result at.
class OutputTarget : public ByteSink {
 public:
  /// Whether a person reads along.
  virtual bool isTerminal() const = 0;

  /// Places in a line of the terminal; 0 where there is none, or it does not say.
  virtual int width() const = 0;

  /// Called once, after the last write: the result is complete and shall stay. Throws moxError.
  virtual void commit() = 0;
};

/// Standard output. A reader that went away ends the program as the signal for it does, without a
/// word.
std::unique_ptr<OutputTarget> openStandardOutput();

/// A file that is there in full or not at all: the bytes go into a new file beside it, which takes
/// its place on commit, with the rights of the file replaced. Without commit, and when the program
/// is interrupted, nothing stays behind. What is no regular file (a device, a pipe) is written to
/// as it is. Throws moxError when the place cannot be written.
std::unique_ptr<OutputTarget> openOutputFile(std::string const& path);

}  // namespace mox::cli
