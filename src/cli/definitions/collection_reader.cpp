#include "cli/definitions/collection_reader.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>

#include "cli/definitions/unread_parts.h"
#include "mox/core/blob.h"
#include "mox/core/file_operations.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "mox/zyn/items/zyn_item.h"
#include "mox/zyn/items/zyn_load_report.h"

namespace mox::cli {

namespace {

constexpr char const* kRoot = "moxZYNCollection";

// Elements of a source that give one of its columns a role.
constexpr std::string_view kUnitRole = "unidadeColumn";
constexpr std::string_view kRoles[] = {kUnitRole, "mainData", "statusColumn", "descricaoColumn"};

[[noreturn]] void fail(std::string const& place, std::string const& what) {
  throw moxDefaultErrorImpl<moxError>(place + ": " + what);
}

/// Runs `read`; a failure gets the place in front.
template <class Read>
auto at(std::string const& place, Read const& read) {
  try {
    return read();
  } catch (moxPluginNotFound const&) {
    throw;
  } catch (moxError const& error) {
    std::string text = error.errorMessage();
    for (auto const& detail : error.errorDetails()) {
      text += "; " + detail;
    }
    fail(place, text);
  }
}

/// Of each child of the root, in order; none for a document that is not handed out in pieces.
std::vector<std::vector<std::string>> unreadPartsOf(moxXMLDocument const& document,
                                                    moxReadBlob const& bytes,
                                                    std::string const& path) {
  std::vector<std::vector<std::string>> parts;
  if (auto const* const pieces = dynamic_cast<moxXMLPieces const*>(&document)) {
    bool const handedOut = pieces->readPieces(bytes, [&](auto const& table, auto element) {
      if (element != 0) {
        parts.push_back(unreadParts(table, element, path));
      }
    });
    if (!handedOut) {
      parts.clear();
    }
  }
  return parts;
}

std::string placeOf(std::string const& path, moxXMLNode const& element) {
  return fmt::format("{}:{}", path, element.line());
}

}  // namespace

OpenCollection CollectionReader::read(std::string const& path) {
  auto const bytes = host_.make<moxFileOperations>("moxFileOperations")->readFile(path);
  auto const document = host_.make<moxXMLDocument>("moxXMLDocument");
  at(path, [&] { document->parse(*bytes); });
  auto const root = document->root();
  if (root->elementName() != kRoot) {
    fail(placeOf(path, *root), fmt::format("the root element is {}, and that of a collection is {}",
                                           root->elementName(), kRoot));
  }
  auto const unread = unreadPartsOf(*document, *bytes, path);
  for (std::size_t i = 0; auto const element = root->childByIndex(static_cast<int>(i)); ++i) {
    readElement(path, element, i < unread.size() ? unread[i] : std::vector<std::string>());
  }
  return {path, bytes, root->readAttribute("parentLibraryName")};
}

void CollectionReader::readElement(std::string const& path,
                                   std::shared_ptr<moxXMLNode> const& element,
                                   std::vector<std::string> const& unread) {
  std::for_each(unread.begin(), unread.end(), [this](auto const& part) { notes_.add(part); });
  auto const name = element->elementName();
  auto const place = placeOf(path, *element);
  try {
    auto const item = host_.application().get<moxZYNItem>(name);
    if (!item) {
      return takeAlong(place, name, "its class is no definition that is available here");
    }
    if (!at(place, [&] { return item->load(element); })) {
      auto const refused = name + " is not complete: its class refuses it";
      fail(place,
           fmt::format("{}{}{}", refused, unread.empty() ? "" : "; ", fmt::join(unread, "; ")));
    }
    checkRoles(path, *element, *item);
    if (auto const* const report = dynamic_cast<moxZYNLoadReport const*>(item.get())) {
      for (auto const& left : report->skippedElements()) {
        takeAlong(fmt::format("{}:{}", path, left.line), left.elementName, left.reason);
      }
    }
    remember(item->description(), place);
  } catch (moxPluginNotFound const& error) {
    takeAlong(place, name, error.errorMessage());
  }
}

/// A source drops a role whose column it does not have, without a word. Where it is the unit's
/// column every user would see every row.
void CollectionReader::checkRoles(std::string const& path, moxXMLNode const& element,
                                  moxZYNItem const& item) {
  auto const saved = host_.make<moxXMLDocument>("moxXMLDocument");
  saved->create(element.elementName());
  item.save(saved->root());
  for (auto const role : kRoles) {
    auto const asked = element.childByIndex(0, role);
    if (!asked || saved->root()->childByIndex(0, role)) {
      continue;
    }
    auto const place = placeOf(path, *asked);
    auto const fault = fmt::format(
        "{} names no column of \"{}\": tableName \"{}\", columnName \"{}\"", role,
        item.description(), asked->readAttribute("tableName"), asked->readAttribute("columnName"));
    if (role == kUnitRole) {
      fail(place, fault);
    }
    notes_.add(fmt::format("{}: {}", place, fault));
  }
}

void CollectionReader::takeAlong(std::string const& place, std::string const& element,
                                 std::string const& reason) {
  notes_.add(fmt::format("{}: {} is taken along unread: {}", place, element, reason));
}

void CollectionReader::remember(std::string const& description, std::string const& place) {
  auto const [known, isNew] = places_.emplace(description, place);
  if (!isNew) {
    notes_.add(fmt::format("{}: \"{}\" is defined at {} already, which is the one that is found",
                           place, description, known->second));
  }
}

}  // namespace mox::cli
