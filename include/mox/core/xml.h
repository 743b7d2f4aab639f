#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "mox/core/plugin_base.h"

class moxReadBlob;

/// An element of an XML document. It keeps the whole document's content alive, so it stays good for
/// as long as somebody holds it, also after it was cleared away or its document object was dropped.
/// A document and its nodes belong to one thread at a time.
///
/// Names and texts are UTF-8. Writing operations throw moxError for bytes that are no UTF-8, for a
/// NUL inside a text, and for a name that is no XML name (a letter, "_" or ":" first; then also
/// digits, "." and "-"): what was written can always be read again and gives the same texts.
class moxXMLNode {
 public:
  virtual ~moxXMLNode() = default;

  /// The child element with number `index`, from 0, among those that match; empty when there are
  /// fewer, or for a negative index. An empty `elementName` matches every element. A not empty
  /// `attributeName` matches only elements for which readAttribute(attributeName) is
  /// `attributeValue`. Asking for rising indexes is one walk over the children in all.
  virtual std::shared_ptr<moxXMLNode> childByIndex(int index, std::string_view elementName = {},
                                                   std::string_view attributeName = {},
                                                   std::string_view attributeValue = {}) const = 0;

  /// Adds an element behind the last child and hands it out. Throws moxError also when elements
  /// would be nested deeper than can be read again (256).
  virtual std::shared_ptr<moxXMLNode> addChild(std::string_view name) = 0;

  /// The attribute's text; empty when it is absent.
  virtual std::string readAttribute(std::string_view name) const = 0;

  /// Sets an attribute, at the end of the list when it is new.
  virtual void writeAttribute(std::string_view name, std::string_view value) = 0;

  /// The text that stands directly in the element, all pieces joined; empty when there is none.
  /// White space alone, between the tags of children, is no text.
  virtual std::string readText() const = 0;

  /// Replaces the element's own text; children stay, and come behind it.
  virtual void writeText(std::string_view text) = 0;

  virtual std::string elementName() const = 0;
  virtual void setElementName(std::string_view name) = 0;

  /// Takes away attributes, text and children; the name and the place in the document stay.
  virtual void clear() = 0;

  /// Line of the element's tag in the text that was read, from 1; 0 for an element that was added,
  /// or got another name.
  virtual int line() const = 0;
};

/// An XML document. Registered as "moxXMLDocument"; born as create() leaves it. Belongs to one
/// thread at a time.
///
/// Reading never fetches anything. It throws a moxError that tells line and column, and leaves the
/// document as it was, for a text that is not well-formed, that has a DOCTYPE or an entity other
/// than the five of XML and character references, or that goes beyond the bounds: 64 MiB, elements
/// nested 256 deep. Comments and processing instructions are read over and not kept.
class moxXMLDocument : public virtual moxPluginBase {
 public:
  /// Starts anew with nothing but an empty root element.
  virtual void create(std::string_view rootName = "root") = 0;

  /// Reads a document as it stands in a file: UTF-8 or, where a byte order mark or the declaration
  /// says so, UTF-16, ISO-8859-1 or windows-1252.
  virtual void parse(moxReadBlob const& content) = 0;

  /// Reads a text that is UTF-8 already, whatever encoding its declaration names.
  virtual void loadText(std::string_view text) = 0;

  /// The root element; never empty.
  virtual std::shared_ptr<moxXMLNode> root() const = 0;

  /// The document as UTF-8 text. `indent` 1 puts each element without text of its own on lines of
  /// its own, two blanks a level; 0 adds no white space at all. `declaration` 1 puts the XML
  /// declaration in front. Reading the text gives an equal document.
  virtual std::string writeText(int indent, int declaration) const = 0;
};
