#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/format/property.h"
#include "mox/zyn/format/value_properties.h"

class moxPropertiesObject;
class moxXMLNode;

/// The settings of one object, in order: kept in XML together, and listed for settings screens.
/// Registered as "moxPropertiesCollection". Belongs to its owner and to the owner's thread; must be
/// held by a shared_ptr before the first property is added, or adding throws std::bad_weak_ptr.
///
/// Properties stand in groups. The group with the empty name, the first, lives on the node that is
/// handed to save and load, every other one on a child element of the group's name.
class moxPropertiesCollection : public virtual moxPluginBase {
 public:
  /// Saves all properties, group by group in the byte order of their names, in a group in the order
  /// of addition. At the first property that gives false the rest is skipped, and the result is
  /// false; elements of later groups are added all the same. True without properties.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// Loads in the order of save, with the same stop. Properties of a group whose element is absent
  /// are handed an empty node.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// All properties in the order of addition.
  virtual std::vector<std::shared_ptr<moxProperty>> getProperties() const = 0;

  /// Who is told of changes; null for nobody. Not owned, and must outlive the collection or detach
  /// it.
  virtual void setObject(moxPropertiesObject* owner) = 0;

  /// Tells the owner, when there is one.
  virtual void propertyChanged() = 0;

  /// Properties that are added from now on stand in that group; those added before stay.
  virtual void setXMLGroup(std::string const& group) = 0;

  /// Each makes a property over a member of the owner, adds it to the current group and hands it
  /// out. `name` is the key in XML, `description` what the user sees.
  virtual std::shared_ptr<moxIntProperty> addIntProperty(std::string const& name,
                                                         std::string const& description,
                                                         int* target) = 0;
  virtual std::shared_ptr<moxDoubleProperty> addDoubleProperty(std::string const& name,
                                                               std::string const& description,
                                                               double* target) = 0;
  virtual std::shared_ptr<moxStringProperty> addStringProperty(std::string const& name,
                                                               std::string const& description,
                                                               std::string* target) = 0;
  virtual std::shared_ptr<moxTextProperty> addTextProperty(std::string const& name,
                                                           std::string const& description,
                                                           std::string* target) = 0;
  virtual std::shared_ptr<moxBooleanProperty> addBooleanProperty(std::string const& name,
                                                                 std::string const& description,
                                                                 bool* target) = 0;

  /// Adds a property that was made elsewhere and hands it back; an empty pointer changes nothing
  /// and comes back.
  virtual std::shared_ptr<moxProperty> addCustomProperty(std::shared_ptr<moxProperty> property) = 0;

  /// The properties that are of the class or derived from it, in the order of addition.
  virtual std::vector<std::shared_ptr<moxProperty const>> findProperties(
      std::type_info const& type) const = 0;

  /// The first property, in the order of addition, of exactly that name that is of the class or
  /// derived from it; empty when there is none.
  virtual std::shared_ptr<moxProperty const> findProperty(std::string const& name,
                                                          std::type_info const& type) const = 0;
};

/// Offered by collections and properties that may be held longer than the owner lives.
class moxDetachable {
 public:
  virtual ~moxDetachable() = default;

  /// Lets go of the owner, for good. The owner's destructor calls it on its collection.
  virtual void detach() = 0;
};
