#pragma once

#include <memory>
#include <string>

class moxBlob;
class moxReadBlob;

/// The form of collection files, for programs that open and write files in ways of their own. A
/// second face of "moxZYNUtils", asked for by dynamic_cast; like it safe from any thread. The
/// document is carried over byte by byte, without being understood.
class moxZYNFileFormat {
 public:
  virtual ~moxZYNFileFormat() = default;

  /// The whole content of a collection file: ten bytes, and behind them the document, squeezed.
  virtual std::shared_ptr<moxBlob> toFileContent(moxReadBlob const& document) const = 0;

  /// The document in the whole content of a collection file. `path` is what failures call the file.
  /// Throws moxZYNUtils::FormatError for a wrong header, and moxError for data that is damaged,
  /// incomplete, followed by more, or grows out of bounds; the details say where in the file.
  virtual std::shared_ptr<moxBlob> documentOf(moxReadBlob const& content,
                                              std::string const& path) const = 0;
};
