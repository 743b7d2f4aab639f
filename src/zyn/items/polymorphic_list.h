#pragma once

#include <memory>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "zyn/frame/registered.h"
#include "zyn/frame/xml_element.h"
#include "zyn/items/definition_error.h"

/// Lists of objects of many classes in XML: an element each, named like the registered class. `T`
/// has name(), load(node) and save(node). Every definition that holds such a list reads and writes
/// it here.
namespace polymorphic_list {

/// Adds an element for each object in order, passing over empty pointers. An object that cannot be
/// saved ends the list.
template <class T>
void save(std::vector<std::shared_ptr<T>> const& items, moxXMLNode& node) {
  for (auto const& item : items) {
    if (item && !item->save(node.addChild(item->name()))) {
      return;
    }
  }
}

/// What reading one element came to.
enum class Reading { kTaken, kRefused, kUnknown };

/// Makes the object of an element. A registered class that is no `T` counts as taken and leaves
/// `item` empty. Unknown is an element whose class, or a class that it needs in turn, nobody has
/// registered; `reason` then says which. Other failures pass, with the element in their details.
template <class T>
Reading read(XmlElement const& element, std::shared_ptr<T>& item, std::string& reason) {
  try {
    item = registered<T>(element.name());
    return !item || loadFrom(*item, element) ? Reading::kTaken : Reading::kRefused;
  } catch (moxPluginNotFound const& error) {
    reason = error.errorMessage();
    return Reading::kUnknown;
  } catch (moxError const& error) {
    throw itemFailure(error, element);
  }
}

/// Reads one element of a list and hands its object to `append`, an empty pointer for a class that
/// is no `T`; notes an element of an unknown class in `skipped`. False for an object that refuses
/// its element, which ends the list.
template <class T, class Append>
bool loadOne(XmlElement const& element, Append const& append,
             std::vector<moxZYNSkippedElement>& skipped) {
  std::shared_ptr<T> item;
  std::string reason;
  Reading const reading = read(element, item, reason);
  if (reading == Reading::kTaken) {
    append(std::move(item));
  } else if (reading == Reading::kUnknown) {
    skipped.push_back({element.name(), element.line(), reason, {}, {}});
  }
  return reading != Reading::kRefused;
}

/// Reads the element's children, whatever their names, one by one. Gives the elements of unknown
/// classes, which do no harm to the others.
template <class T, class Append>
std::vector<moxZYNSkippedElement> load(XmlElement const& list, Append const& append) {
  std::vector<moxZYNSkippedElement> skipped;
  list.eachChild({},
                 [&](XmlElement const& element) { return loadOne<T>(element, append, skipped); });
  return skipped;
}

template <class T, class Append>
std::vector<moxZYNSkippedElement> load(moxXMLNode const& node, Append const& append) {
  return load<T>(XmlElement(node), append);
}

}  // namespace polymorphic_list
