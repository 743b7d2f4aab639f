#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/host.h"
#include "cli/notes.h"
#include "mox/zyn/items/zyn_item.h"

namespace mox::cli {

/// The words for the kinds of definitions, by moxZYNItem::Tipo.
std::vector<std::string> const& kindWords();

/// The word for a definition's kind; its number for one that has no word.
std::string kindWord(moxZYNItem const& item);

/// Every definition whose library the session may use, by the bytes of the descriptions and then in
/// the order of loading.
std::vector<std::shared_ptr<moxZYNItem const>> usableDefinitions(Host& host);

/// The definition that the session finds by that description. Throws moxError when there is none;
/// the sentence names similar ones.
std::shared_ptr<moxZYNItem> findDefinition(Host& host, std::string const& description);

/// A note for each element of the collections, of libraries that the session may use, that was left
/// out when they were read.
void noteSkippedElements(Host& host, Notes& notes);

}  // namespace mox::cli
