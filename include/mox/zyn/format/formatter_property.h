#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "mox/zyn/format/property.h"

class moxGenericFormatter;

/// A formatter as a setting: a formatter of its own, or one that is shared by name through the item
/// cache. Registered as "FormatterProperty"; born without a target, which setup gives.
///
/// In XML it is an element named like the property. It holds either the formatter's element, or
/// "moxZYNFormatter" with the attribute `description`, the name of a formatter item. Such an item
/// is looked up when the formatter is first asked for, once, found or not; several threads may ask
/// at the same time.
///
/// Loading a reference to an item gives false, although it worked: the formatter is not there yet.
/// A collection stops loading at a false, so owners add this property last.
class moxFormatterProperty : public virtual moxProperty {
 public:
  /// Whether there is a formatter; looks a shared one up.
  virtual bool hasValue() const = 0;

  /// To be called once, before all else. `target` is the owner's member. With `allowReplace` false
  /// setNewFormatter does nothing.
  virtual void setup(std::string const& name, std::string const& description,
                     std::shared_ptr<moxGenericFormatter const>* target, bool allowReplace) = 0;
  virtual bool allowReplace() const = 0;

  /// The class that a new formatter must be or derive from; moxGenericFormatter from the start.
  virtual void setAllowedType(std::type_info const& type) = 0;
  virtual std::type_info const& allowedType() const = 0;

  /// Puts another formatter in place, or none for an empty pointer, and tells the owner. `external`
  /// says that it is to be kept by name. Nothing happens where replacing is not allowed, or for a
  /// formatter of a class that is not allowed.
  virtual void setNewFormatter(std::shared_ptr<moxGenericFormatter const> formatter,
                               bool external) const = 0;

  /// The formatter, empty for none; looks a shared one up.
  virtual std::shared_ptr<moxGenericFormatter const> formatter() const = 0;

  /// Whether the formatter is kept by name.
  virtual bool getExterno() const = 0;
};
