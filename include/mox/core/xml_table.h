#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

class moxReadBlob;
class moxXMLNode;

/// The elements of a document as it was read, as plain data in the order of the text: for whoever
/// reads thousands of elements once, to whom an object for each would cost more than what it says.
/// Elements are known by their number: 0 is the root, the first child of `n` is `n + 1`, and what
/// follows behind all that stands in `n` is `elements[n].end`. Nothing changes in a table, and
/// views of its texts are good for as long as it is held; all but nodeOf and lineOf may be used by
/// several threads.
class moxXMLTable {
 public:
  struct Attribute {
    std::uint32_t nameAt;  // in the text
    std::uint32_t nameSize;
    std::uint32_t valueAt;         // in the text, or in the decoded values
    std::uint32_t valueSize : 31;  // bytes
    std::uint32_t isDecoded : 1;
  };

  struct Element {
    std::uint32_t nameAt;  // in the text
    std::uint32_t nameSize;
    std::uint32_t firstAttribute;  // its attributes end where those of the next number begin
    std::uint32_t end;             // number behind the last element inside
    std::uint32_t textAt;          // in the text, or in the decoded values
    std::uint32_t textSize : 31;   // bytes; valid unless isMixed
    std::uint32_t isDecoded : 1;
    std::uint32_t tagsEnd;      // offset behind the end of its last tag
    std::uint32_t depth : 31;   // 1 for the root
    std::uint32_t isMixed : 1;  // its own text stands in pieces: the node puts them together
  };

  virtual ~moxXMLTable() = default;

  /// The element as a node, in a document of its own, with the lines of this one. Costs as much as
  /// there is in the element.
  virtual std::shared_ptr<moxXMLNode> nodeOf(std::uint32_t element) const = 0;

  /// As moxXMLNode::line.
  virtual int lineOf(std::uint32_t element) const = 0;

  /// One more than there are, the last one being empty.
  Element const* elements() const { return elements_; }
  Attribute const* attributes() const { return attributes_; }

  std::string_view nameOf(Element const& element) const {
    return {text_ + element.nameAt, element.nameSize};
  }
  std::string_view textOf(Element const& element) const {
    return {(element.isDecoded != 0 ? decoded_ : text_) + element.textAt, element.textSize};
  }
  std::string_view nameOf(Attribute const& attribute) const {
    return {text_ + attribute.nameAt, attribute.nameSize};
  }
  std::string_view valueOf(Attribute const& attribute) const {
    return {(attribute.isDecoded != 0 ? decoded_ : text_) + attribute.valueAt, attribute.valueSize};
  }

 protected:
  char const* text_ = nullptr;
  char const* decoded_ = nullptr;
  Element const* elements_ = nullptr;
  Attribute const* attributes_ = nullptr;
};

/// Second face of the root of a document that was read. Ask for it by a dynamic_cast; a node
/// without it is read element by element.
class moxXMLTableSource {
 public:
  virtual ~moxXMLTableSource() = default;

  /// The document as it was read; empty for an element that is no root, once the document was asked
  /// for any of its nodes, and for a document that was not read.
  virtual std::shared_ptr<moxXMLTable const> table() const = 0;
};

/// Second face of a document object that hands out what it reads child by child, for whoever reads
/// thousands of elements once: their table is then as small as one of them, and never leaves the
/// processor's caches. Ask for it by a dynamic_cast.
class moxXMLPieces {
 public:
  /// Gets the root as element 0, with its attributes alone, and then each child of the root as
  /// element 1, with all that stands in it. The table holds nothing else and changes behind each
  /// call: nothing of it may be kept.
  using Visit = std::function<void(moxXMLTable const& table, std::uint32_t element)>;

  virtual ~moxXMLPieces() = default;

  /// Reads a document as moxXMLDocument::parse takes it, and leaves the object as it was. False for
  /// a document that cannot be read so: what was handed out by then is worth nothing, and parse is
  /// to be asked. Throws as parse does, when the pieces ahead of the defect were handed out
  /// already, and what `visit` throws.
  virtual bool readPieces(moxReadBlob const& content, Visit const& visit) const = 0;
};
