#include "zyn/items/zyn_utils.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/blob.h"
#include "mox/core/compress.h"
#include "mox/core/error_with_details.h"
#include "mox/core/file_operations.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_item.h"
#include "zyn/items/zyn_collection.h"

namespace {

// The name by which the format's users know it. NOLINTNEXTLINE(readability-identifier-naming)
constexpr std::array<char, 10> binDataSignature = {1, 0, 'M', 'O', 'X', 'Z', 'Y', 'N', 'C', 0};

std::shared_ptr<moxFileOperations> files() {
  return moxApp->get<moxFileOperations>("moxFileOperations");
}

std::shared_ptr<moxCompress> compressor() {
  return moxApp->get<moxCompress>("moxZCompress");
}

std::shared_ptr<moxXMLDocument> newDocument() {
  return moxApp->get<moxXMLDocument>("moxXMLDocument");
}

std::shared_ptr<moxZYNCollection> newCollection() {
  return moxApp->get<moxZYNCollection>("moxZYNCollection");
}

/// Makes each item when its element was read, so that there is never a table of all of them. Empty
/// where document, text or collection are of a kind that cannot do this.
std::shared_ptr<moxZYNCollection> readInPieces(moxXMLDocument const& xml,
                                               moxReadBlob const& document) {
  auto const* const reader = dynamic_cast<moxXMLPieces const*>(&xml);
  auto collection = newCollection();
  auto* const own = dynamic_cast<zynCollection*>(collection.get());
  bool const isRead = reader != nullptr && own != nullptr && own->readPieces(*reader, document);
  return isRead ? std::move(collection) : nullptr;
}

bool tellsFile(moxError const& error, std::string const& path) {
  auto texts = error.errorDetails();
  texts.push_back(error.errorMessage());
  return std::any_of(texts.begin(), texts.end(),
                     [&](std::string const& text) { return text.find(path) != std::string::npos; });
}

/// Reads a file by `read`; failures that do not tell which file it was get its name as a detail.
template <class Read>
auto namingFile(std::string const& path, Read const& read) {
  try {
    return read();
  } catch (moxError const& error) {
    if (tellsFile(error, path)) {
      throw;
    }
    throw moxErrorWithDetails(error, {"file: " + path});
  }
}

std::string hexByte(char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  auto const value = static_cast<unsigned char>(byte);
  return {'0', 'x', kDigits[value >> 4], kDigits[value & 0xF]};
}

bool looksLikeXml(std::string_view head) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  head.remove_prefix(head.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  return head.starts_with('<');
}

/// What is wrong with the first bytes of a file, for its author; empty when they are right.
std::string defectOfHeader(std::string_view content) {
  std::string_view const right(binDataSignature.data(), binDataSignature.size());
  auto const head = content.substr(0, right.size());
  if (head == right) {
    return {};
  }
  if (looksLikeXml(head)) {
    return "it begins like an open XML document";
  }
  auto const at = static_cast<std::size_t>(
      std::mismatch(head.begin(), head.end(), right.begin()).first - head.begin());
  if (at == head.size()) {
    return "it ends after " + std::to_string(at) + " bytes, and the header has 10";
  }
  return "byte " + std::to_string(at) + (at < 2 ? ", the version of the format, is " : " is ") +
         hexByte(head[at]) + " where " + hexByte(right[at]) + " belongs";
}

std::shared_ptr<moxZYNCollection> collectionOf(std::string const& path,
                                               moxReadBlob const& document) {
  auto collection = zynUtils::unserializeZYNC(document);
  if (auto* const own = dynamic_cast<zynCollection*>(collection.get())) {
    own->setFile(path);
  }
  return collection;
}

std::shared_ptr<moxBlob> behindSignature(moxReadBlobCursor& document) {
  auto const squeezed = compressor()->compress(document);
  auto blob = moxApp->get<moxBlob>("moxBlob");
  blob->resize(binDataSignature.size() + squeezed->size());
  auto const cursor = blob->open();
  cursor->write(binDataSignature.data(), binDataSignature.size());
  cursor->write(squeezed->data(), squeezed->size());
  return blob;
}

/// A new object of the same class, told the same by way of an element. The element bears the name
/// that it would have in a collection: a class may look at it. An object that cannot be saved
/// leaves the new one as its class makes it.
template <class T>
std::shared_ptr<T> copyByXml(T const& original) {
  auto copy = moxApp->get<T>(original.name());
  auto const document = newDocument();
  auto const root = document->root();
  root->setElementName(original.name());
  if (copy && original.save(root)) {
    copy->load(root);
  }
  return copy;
}

}  // namespace

zynUtils::FError::FError(std::string const& path, std::string const& where)
    : moxDefaultErrorImpl<moxZYNUtils::FormatError>("Cabeçalho de dados incorreto.",
                                                    {"file: " + path, where}) {}

void zynUtils::savePlainToFile(std::string const& path,
                               std::shared_ptr<moxZYNCollection> collection) {
  files()->saveFile(path, *getPlainData(std::move(collection), true));
}

void zynUtils::saveBinaryToFile(std::string const& path,
                                std::shared_ptr<moxZYNCollection> collection) {
  auto const document = getPlainData(std::move(collection), false);
  toBinFile(path, *document->openRead());
}

std::shared_ptr<moxZYNCollection> zynUtils::loadBinaryFile(std::string const& path) {
  return namingFile(path, [&] { return collectionOf(path, *fromBinFile(path)); });
}

std::shared_ptr<moxZYNCollection> zynUtils::loadPlainFile(std::string const& path) {
  return namingFile(path, [&] { return collectionOf(path, *files()->readFile(path)); });
}

void zynUtils::plainToBinary(std::string const& from, std::string const& to) {
  auto const document = files()->readFile(from);
  toBinFile(to, *document->openRead());
}

void zynUtils::binaryToPlain(std::string const& from, std::string const& to) {
  files()->saveFile(to, *fromBinFile(from));
}

std::shared_ptr<moxBlob> zynUtils::getPlainData(std::shared_ptr<moxZYNCollection> collection,
                                                bool indent) {
  if (!collection) {
    throw std::logic_error("moxZYNUtils was given no collection to write");
  }
  auto const document = newDocument();
  collection->serialize(document->root());
  std::string const text = document->writeText(indent ? 1 : 0, 1);
  auto blob = moxApp->get<moxBlob>("moxBlob");
  blob->assign(text.data(), text.size());
  return blob;
}

std::shared_ptr<moxZYNItem> zynUtils::duplicateItem(std::shared_ptr<moxZYNItem> item) {
  if (!item) {
    return {};
  }
  auto copy = copyByXml(*item);
  if (copy) {
    copy->setParentLibraryName(item->getParentLibName());
  }
  return copy;
}

std::shared_ptr<moxGenericFormatter> zynUtils::duplicateFormatter(
    std::shared_ptr<moxGenericFormatter const> formatter) {
  return formatter ? copyByXml(*formatter) : nullptr;
}

std::shared_ptr<moxBlob> zynUtils::toFileContent(moxReadBlob const& document) const {
  return behindSignature(*document.openRead());
}

std::shared_ptr<moxBlob> zynUtils::documentOf(moxReadBlob const& content,
                                              std::string const& path) const {
  auto const defect = defectOfHeader({content.data(), content.size()});
  if (!defect.empty()) {
    throw FError(path, defect);
  }
  constexpr std::size_t kHeader = binDataSignature.size();
  auto const squeezed = moxApp->get<moxAdapterBlob>("moxAdapterBlob");
  squeezed->wrap(content.data() + kHeader, content.size() - kHeader, 0);
  try {
    return compressor()->decompress(*squeezed);
  } catch (moxError const& error) {
    throw moxErrorWithDetails(
        error, {"file: " + path},
        {"the compressed data begins at byte " + std::to_string(kHeader) + " of the file"});
  }
}

void zynUtils::toBinFile(std::string const& path, moxReadBlobCursor& document) {
  files()->saveFile(path, *behindSignature(document));
}

std::shared_ptr<moxBlob> zynUtils::fromBinFile(std::string const& path) {
  return zynUtils().documentOf(*files()->readFile(path), path);
}

std::shared_ptr<moxZYNCollection> zynUtils::unserializeZYNC(moxReadBlob const& document) {
  auto const xml = newDocument();
  if (auto collection = readInPieces(*xml, document)) {
    return collection;
  }
  xml->parse(document);
  auto collection = newCollection();
  collection->unserialize(xml->root());
  return collection;
}
