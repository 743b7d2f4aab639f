#include "cli/definitions/definition_list.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mox/core/session.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_load_report.h"

namespace mox::cli {

namespace {

std::shared_ptr<moxZYNCache> cacheOf(Host& host) {
  return host.make<moxZYNCache>("moxZYNCache");
}

bool mayUse(Host& host, std::string const& library) {
  auto const& sessions = host.application().sessions();
  return sessions.sessionManager().isLibraryPermitted(sessions.currentSession(), library);
}

std::string lowerCase(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

/// Descriptions that hold what was asked for, in whatever case.
std::vector<std::string> similarDescriptions(Host& host, std::string const& asked) {
  constexpr std::size_t kMost = 5;
  std::vector<std::string> similar;
  for (auto const& item : usableDefinitions(host)) {
    auto description = item->description();
    if (similar.size() < kMost && !asked.empty() &&
        lowerCase(description).find(lowerCase(asked)) != std::string::npos) {
      similar.push_back(fmt::format("\"{}\"", description));
    }
  }
  return similar;
}

}  // namespace

std::vector<std::string> const& kindWords() {
  static std::vector<std::string> const words = {"search",      "pack",      "formatter",
                                                 "data-source", "indicator", "data-processor"};
  return words;
}

std::string kindWord(moxZYNItem const& item) {
  auto const kind = static_cast<std::size_t>(item.getTipo());
  return kind < kindWords().size() ? kindWords()[kind] : std::to_string(item.getTipo());
}

std::vector<std::shared_ptr<moxZYNItem const>> usableDefinitions(Host& host) {
  auto items = cacheOf(host)->getItemsByType(typeid(moxZYNItem));
  std::erase_if(items, [&](auto const& item) { return !mayUse(host, item->getParentLibName()); });
  std::stable_sort(items.begin(), items.end(), [](auto const& a, auto const& b) {
    return a->description() < b->description();
  });
  return items;
}

std::shared_ptr<moxZYNItem> findDefinition(Host& host, std::string const& description) {
  if (auto item = cacheOf(host)->getCollection(description)) {
    return item;
  }
  auto const similar = similarDescriptions(host, description);
  throw moxDefaultErrorImpl<moxError>(
      fmt::format("there is no definition \"{}\"{}{}", description,
                  similar.empty() ? "" : "; similar: ", fmt::join(similar, ", ")));
}

void noteSkippedElements(Host& host, Notes& notes) {
  auto const cache = cacheOf(host);
  auto const* const report = dynamic_cast<moxZYNLoadReport const*>(cache.get());
  if (report == nullptr) {
    return;
  }
  for (auto const& element : report->skippedElements()) {
    if (mayUse(host, element.library)) {
      notes.add(fmt::format("{}:{}: {} was left out: {}", element.file, element.line,
                            element.elementName, element.reason));
    }
  }
}

}  // namespace mox::cli
