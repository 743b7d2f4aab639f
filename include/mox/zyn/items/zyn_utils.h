#pragma once

#include <memory>
#include <string>

#include "mox/core/error.h"
#include "mox/core/plugin_base.h"

class moxBlob;
class moxGenericFormatter;
class moxZYNCollection;
class moxZYNItem;

/// Files of collections, and copies of items. Registered as "moxZYNUtils", one for the process; it
/// keeps no state and may be used from any thread.
///
/// A collection's document is XML in UTF-8. Its binary file holds ten bytes (the format's version 1
/// in two bytes, low byte first, the letters "MOXZYNC", and a zero byte) and behind them the
/// document as "moxZCompress" squeezes it. Files are replaced whole: after a failure the old one is
/// as it was. Failures throw moxError; the file's name is in its message or its details.
class moxZYNUtils : public virtual moxPluginBase {
 public:
  /// The failure of a file that is no binary collection: "Cabeçalho de dados incorreto.".
  class FormatError : public moxError {};

  /// Saves the document, laid out for people.
  virtual void savePlainToFile(std::string const& path,
                               std::shared_ptr<moxZYNCollection> collection) = 0;

  /// Saves the document without added white space, behind the ten bytes and squeezed.
  virtual void saveBinaryToFile(std::string const& path,
                                std::shared_ptr<moxZYNCollection> collection) = 0;

  /// The collection of a file; never empty. Throws FormatError when the first ten bytes are not
  /// those of a binary collection.
  virtual std::shared_ptr<moxZYNCollection> loadBinaryFile(std::string const& path) = 0;
  virtual std::shared_ptr<moxZYNCollection> loadPlainFile(std::string const& path) = 0;

  /// Turns one form of the file into the other. The text is carried over byte by byte, without
  /// being understood.
  virtual void plainToBinary(std::string const& from, std::string const& to) = 0;
  virtual void binaryToPlain(std::string const& from, std::string const& to) = 0;

  /// The document as text; with `indent` laid out for people, else without added white space.
  virtual std::shared_ptr<moxBlob> getPlainData(std::shared_ptr<moxZYNCollection> collection,
                                                bool indent) = 0;

  /// A new item, equal and independent, of the same library. An item that cannot be saved gives one
  /// as its class makes it; empty for an empty pointer. Throws moxPluginNotFound for a class that
  /// is not registered.
  virtual std::shared_ptr<moxZYNItem> duplicateItem(std::shared_ptr<moxZYNItem> item) = 0;

  /// As duplicateItem.
  virtual std::shared_ptr<moxGenericFormatter> duplicateFormatter(
      std::shared_ptr<moxGenericFormatter const> formatter) = 0;
};
