#pragma once

#include <memory>
#include <string_view>
#include <vector>

/// A list of objects that a definition owns. Belongs to whoever owns the definition; it may be read
/// by many threads while nobody changes it.
template <class T>
class moxTypedCollection {
 public:
  virtual ~moxTypedCollection() = default;

  /// Adds at the end; an object that the list holds already, the same pointer, stays where it is.
  virtual void add(std::shared_ptr<T> item) = 0;

  /// Takes an object out; false when it was not there.
  virtual bool erase(std::shared_ptr<T> item) = 0;

  /// The objects in order.
  virtual std::vector<std::shared_ptr<T>> get() = 0;
  virtual std::vector<std::shared_ptr<T const>> get() const = 0;

  /// The same under the name that definitions of expressions use.
  std::vector<std::shared_ptr<T>> getItems() { return get(); }
  std::vector<std::shared_ptr<T const>> getItems() const { return get(); }
};

/// A list whose order matters.
template <class T>
class moxSortableTypedCollection : public virtual moxTypedCollection<T> {
 public:
  /// Puts `item` directly in front of `before`, at the end when `before` is empty. Nothing happens
  /// when `item` is not in the list, or `before` is not empty and not in it, or is `item`.
  virtual void move(std::shared_ptr<T const> item, std::shared_ptr<T const> before) = 0;

  /// Puts `item` in the place of `original`. Throws moxError: "Replace without original Item. Did
  /// you mean add?" for an empty `original`, "Original doesn't belong to collection." for one that
  /// is not in the list, which then stays as it is.
  virtual void replace(std::shared_ptr<T> item, std::shared_ptr<T const> original) = 0;
};

/// A list whose objects have names, which need not be unique.
template <class T>
class moxNamedSortableTypedCollection : public virtual moxSortableTypedCollection<T> {
 public:
  /// The first object of exactly that name; empty when there is none.
  virtual std::shared_ptr<T> findByName(std::string_view name) = 0;
  virtual std::shared_ptr<T const> findByName(std::string_view name) const = 0;
};
