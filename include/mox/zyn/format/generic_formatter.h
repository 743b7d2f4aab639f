#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/iterator.h"

class moxXMLNode;

/// Turns a cell into text. Columns, search results, EDI fields and chart labels hold one without
/// knowing its kind. It is set up once, by load or by setters, and then used by many threads at
/// once: constant operations may be called from any thread while nobody changes the settings.
class moxGenericFormatter : public virtual moxPluginBase {
 public:
  /// Writes the settings into the formatter's element. False for an empty node, and when a setting
  /// could not be written.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// Takes the settings from the formatter's element; false for an empty node.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// The text of the cell under a cursor. Never throws for a value: an empty pointer, a null, and a
  /// column whose kind the formatter does not take give the empty text, without prefix and suffix.
  virtual std::string asString(std::shared_ptr<moxIterator const> const& cell) const = 0;

  /// The name under which a formatter that is an item of its own is found; empty for others.
  virtual void setDescription(std::string const& description) = 0;
  virtual std::string getDescription() const = 0;

  /// Texts put before and behind.
  virtual void setPrefix(std::string const& prefix) = 0;
  virtual void setSuffix(std::string const& suffix) = 0;
  virtual std::string getPrefix() const = 0;
  virtual std::string getSuffix() const = 0;
};
