#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "zyn/format/number_text.h"

class XmlElement;
class moxXMLNode;

/// Settings that both kinds of number formatters have, and their XML.
struct NumberSettings {
  std::string description;
  std::string prefix;
  std::string suffix;
  char groupCount = 0;
  char groupSeparator = ',';
  unsigned int spanSize = 0;
  char spanFiller = '\0';

  /// Back to the start, all but the three texts.
  void resetNumber();

  /// The attributes of the element. Precondition: the node is not empty.
  void saveTexts(moxXMLNode& node) const;
  void loadTexts(XmlElement const& element);

  /// The elements `thousand` and `span`: written where they say something, and where they are
  /// absent the settings stay.
  void saveNumber(moxXMLNode& node) const;
  void loadNumber(XmlElement const& element);

  /// Digits in a group for the engine; 0 for none.
  unsigned int groupSize() const { return NumberLayout::groupSizeOf(groupCount); }
};

/// A number in an attribute, as atoi reads it: 0 for a text that begins with none.
int readNumber(XmlElement const& element, char const* attribute);

/// A byte in an attribute; the empty attribute is NUL, which XML cannot hold.
char readByte(XmlElement const& element, char const* attribute);
void writeByte(moxXMLNode& node, char const* attribute, char byte);

/// Separators and group size as they were when a formatter was first used after its groups were
/// set: a decimal separator that is set later waits for the next such time. Formatters are shared
/// by threads, so the first use is guarded; after it reading costs one atomic load.
class SeparatorSnapshot {
 public:
  struct Values {
    char decimalSeparator = '.';
    char groupSeparator = ',';
    unsigned int groupSize = 0;
  };

  /// The next use takes the settings anew. Nobody may be formatting meanwhile.
  void invalidate() { isTaken_.store(false, std::memory_order_release); }

  /// `current` gives the settings' values, and is called when they are to be taken.
  template <class Current>
  Values const& get(Current const& current) {
    if (!isTaken_.load(std::memory_order_acquire)) {
      std::lock_guard const lock(mutex_);
      if (!isTaken_.load(std::memory_order_relaxed)) {
        values_ = current();
        isTaken_.store(true, std::memory_order_release);
      }
    }
    return values_;
  }

 private:
  std::atomic<bool> isTaken_ = false;
  std::mutex mutex_;
  Values values_;
};
