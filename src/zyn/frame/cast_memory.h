#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

/// Makes castOf cheap in its thread for as long as it stands: what a cast came to for one object
/// holds for all of the class. A list of definitions is thousands of objects of few classes, and to
/// walk the bases of each anew is a good part of what reading it costs. To be set up around such a
/// list and not for longer: the library of a class that was remembered must stay loaded.
class CastMemory {
 public:
  CastMemory() : outer_(std::exchange(current, this)) {}
  ~CastMemory() { current = outer_; }
  CastMemory(CastMemory const&) = delete;
  CastMemory& operator=(CastMemory const&) = delete;

  /// What is known of casting a class to a type.
  struct Answer {
    static constexpr std::ptrdiff_t kNone = PTRDIFF_MIN;

    std::type_info const* from = nullptr;  // null when nothing is known yet
    void const* to = nullptr;
    std::ptrdiff_t distance = kNone;  // from the whole object's first byte; kNone for no such base
  };

  /// The place for that class and type; it may hold the answer for others. Null when there is no
  /// memory in this thread.
  static Answer* answerFor(std::type_info const& from, void const* to) {
    return current != nullptr ? &current->answers_[placeOf(from, to)] : nullptr;
  }

 private:
  static constexpr std::size_t kAnswers = 64;

  static std::size_t placeOf(std::type_info const& from, void const* to) {
    auto const number = reinterpret_cast<std::uintptr_t>(&from) / 8;
    return (number ^ number / kAnswers ^ reinterpret_cast<std::uintptr_t>(to)) % kAnswers;
  }

  inline static thread_local CastMemory* current = nullptr;

  CastMemory* const outer_;
  std::array<Answer, kAnswers> answers_;
};

namespace cast_memory {

/// Its address stands for the type.
template <class To>
inline constexpr char kType = 0;

}  // namespace cast_memory

/// As dynamic_cast<To*>, for objects of one root as the registry makes them.
template <class To, class From>
To* castOf(From* object) {
  auto* const answer =
      object != nullptr ? CastMemory::answerFor(typeid(*object), &cast_memory::kType<To>) : nullptr;
  if (answer == nullptr) {
    return dynamic_cast<To*>(object);
  }
  using Byte = std::conditional_t<std::is_const_v<To>, char const, char>;
  using Whole = std::conditional_t<std::is_const_v<To>, void const, void>;
  auto* const whole = static_cast<Byte*>(dynamic_cast<Whole*>(object));
  if (answer->from != &typeid(*object) || answer->to != &cast_memory::kType<To>) {
    auto* const found = dynamic_cast<To*>(object);
    *answer = {
        &typeid(*object), &cast_memory::kType<To>,
        found != nullptr ? reinterpret_cast<Byte*>(found) - whole : CastMemory::Answer::kNone};
  }
  return answer->distance != CastMemory::Answer::kNone
             ? reinterpret_cast<To*>(whole + answer->distance)
             : nullptr;
}

/// As std::dynamic_pointer_cast.
template <class To, class From>
std::shared_ptr<To> sharedCastOf(std::shared_ptr<From> object) {
  auto* const found = castOf<To>(object.get());
  return found != nullptr ? std::shared_ptr<To>(std::move(object), found) : nullptr;
}
