#include <memory>
#include <optional>
#include <string>

#include "fuzz/promise.h"
#include "fuzz/targets.h"
#include "mox/core/xml.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_file_format.h"
#include "mox/zyn/items/zyn_utils.h"
#include "support/test_host.h"

namespace mox::fuzz {

namespace {

std::string textOf(moxReadBlob const& blob) {
  return {blob.data(), blob.size()};
}

/// The document, when the bytes are a collection file; else the bytes.
std::string documentIn(moxZYNFileFormat const& format, std::string_view bytes) {
  std::shared_ptr<moxBlob> document;
  if (!accepted([&] { document = format.documentOf(blobOver(bytes), "fuzzed.zcf"); })) {
    return std::string(bytes);
  }
  return textOf(*document);
}

void packAndUnpack(moxZYNFileFormat const& format, std::string const& document) {
  auto const content = format.toFileContent(blobOver(document));
  require(textOf(*content).starts_with(std::string("\x01\0MOXZYNC\0", 10)), "the ten bytes");
  require(textOf(*format.toFileContent(blobOver(document))) == textOf(*content),
          "a document always gives the same file");
  std::shared_ptr<moxBlob> again;
  // Large texts of one byte are refused by whoever reads them.
  if (accepted([&] { again = format.documentOf(*content, "fuzzed.zcf"); })) {
    require(textOf(*again) == document, "what was packed is unpacked to the byte");
  }
}

/// The text of the collection that a document holds; nothing when it is refused.
std::optional<std::string> loadedAndSaved(TestHost& host, std::string const& document) {
  auto const collection = host.get<moxZYNCollection>("moxZYNCollection");
  auto const xml = host.get<moxXMLDocument>("moxXMLDocument");
  std::string text;
  bool const isTaken = accepted([&] {
    xml->loadText(document);
    collection->unserialize(xml->root());
    text = textOf(*host.get<moxZYNUtils>("moxZYNUtils")->getPlainData(collection, false));
  });
  return isTaken ? std::optional(text) : std::nullopt;
}

}  // namespace

void readCollection(std::string_view bytes) {
  TestHost host;
  auto const format =
      std::dynamic_pointer_cast<moxZYNFileFormat>(host.get<moxZYNUtils>("moxZYNUtils"));
  auto const document = documentIn(*format, bytes);
  packAndUnpack(*format, document);
  auto const saved = loadedAndSaved(host, document);
  if (saved) {
    auto const again = loadedAndSaved(host, *saved);
    require(again.has_value(), "what was saved can be loaded");
    require(*again == *saved, "loading and saving gives the same text");
  }
}

}  // namespace mox::fuzz
