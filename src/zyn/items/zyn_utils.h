#pragma once

#include <memory>
#include <string>

#include "mox/zyn/items/zyn_file_format.h"
#include "mox/zyn/items/zyn_utils.h"

class moxReadBlob;
class moxReadBlobCursor;

class zynUtils final : public moxZYNUtils, public moxZYNFileFormat {
 public:
  /// A file that is no binary collection; its path is in the details, with what stands where
  /// something else belongs.
  class FError final : public moxDefaultErrorImpl<moxZYNUtils::FormatError> {
   public:
    FError(std::string const& path, std::string const& where);
  };

  std::string name() const override { return "moxZYNUtils"; }
  void savePlainToFile(std::string const& path,
                       std::shared_ptr<moxZYNCollection> collection) override;
  void saveBinaryToFile(std::string const& path,
                        std::shared_ptr<moxZYNCollection> collection) override;
  std::shared_ptr<moxZYNCollection> loadBinaryFile(std::string const& path) override;
  std::shared_ptr<moxZYNCollection> loadPlainFile(std::string const& path) override;
  void plainToBinary(std::string const& from, std::string const& to) override;
  void binaryToPlain(std::string const& from, std::string const& to) override;
  std::shared_ptr<moxBlob> getPlainData(std::shared_ptr<moxZYNCollection> collection,
                                        bool indent) override;
  std::shared_ptr<moxZYNItem> duplicateItem(std::shared_ptr<moxZYNItem> item) override;
  std::shared_ptr<moxGenericFormatter> duplicateFormatter(
      std::shared_ptr<moxGenericFormatter const> formatter) override;
  std::shared_ptr<moxBlob> toFileContent(moxReadBlob const& document) const override;
  std::shared_ptr<moxBlob> documentOf(moxReadBlob const& content,
                                      std::string const& path) const override;

  /// Writes the document, from the cursor's place on, as a binary file.
  static void toBinFile(std::string const& path, moxReadBlobCursor& document);

  /// The document of a binary file.
  static std::shared_ptr<moxBlob> fromBinFile(std::string const& path);

  /// The collection of a document.
  static std::shared_ptr<moxZYNCollection> unserializeZYNC(moxReadBlob const& document);
};
