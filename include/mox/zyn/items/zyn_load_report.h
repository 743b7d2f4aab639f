#pragma once

#include <string>
#include <vector>

/// An element of a document that was passed over when the document was read.
struct moxZYNSkippedElement {
  std::string elementName;
  int line = 0;         // in the document, from 1; 0 when unknown
  std::string reason;   // a sentence for people
  std::string library;  // of the collection; empty when none was named
  std::string file;     // that the collection was read from; empty when it came from elsewhere
};

/// What reading left out: elements whose class no loaded library has registered, or that need such
/// a class themselves. A second face of collections, packs and the process's cache, asked for by
/// dynamic_cast. Safe from any thread while nobody adds to the object.
class moxZYNLoadReport {
 public:
  virtual ~moxZYNLoadReport() = default;

  /// For a collection those inside its packs come first, then its own; for the cache those of every
  /// collection that was appended since it was cleared, in the order of appending.
  virtual std::vector<moxZYNSkippedElement> skippedElements() const = 0;
};
