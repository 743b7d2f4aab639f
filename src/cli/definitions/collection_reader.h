#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/host.h"
#include "cli/notes.h"

class moxBlob;
class moxXMLNode;
class moxZYNItem;

namespace mox::cli {

/// An open collection file as it was read.
struct OpenCollection {
  std::string path;
  std::shared_ptr<moxBlob> bytes;
  std::string library;  // empty when the file names none
};

/// Reads open collection files and proves that a cache will be able to read them: well-formed, the
/// right root, every definition taken by its class, and a unit column that there is. What is
/// allowed but hardly meant becomes a note: elements that no library knows, a description that is
/// there twice, in one file or in several, other roles for columns that are not there, and what
/// sources made of other sources pass over.
class CollectionReader {
 public:
  CollectionReader(Host& host, Notes& notes) : host_(host), notes_(notes) {}

  /// Throws moxError that names file and line.
  OpenCollection read(std::string const& path);

 private:
  void readElement(std::string const& path, std::shared_ptr<moxXMLNode> const& element,
                   std::vector<std::string> const& unread);
  void checkRoles(std::string const& path, moxXMLNode const& element, moxZYNItem const& item);
  void takeAlong(std::string const& place, std::string const& element, std::string const& reason);
  void remember(std::string const& description, std::string const& place);

  Host& host_;
  Notes& notes_;
  std::map<std::string, std::string> places_;  // of the definitions, by description
};

}  // namespace mox::cli
