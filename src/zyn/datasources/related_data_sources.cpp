#include "zyn/datasources/related_data_sources.h"

#include <algorithm>
#include <map>

#include "mox/core/error.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/datasources/depth_guard.h"

namespace {

using Source = std::shared_ptr<moxDataSource const>;
using Sources = std::vector<Source>;

/// What the calling thread knows while it answers somebody. Definitions that read one source twice
/// at every level would otherwise be asked for the same a million times.
struct Inquiry {
  int questions = 0;               // within each other
  std::vector<std::string> names;  // whose sources are being looked into, the outermost first
  std::map<Source, Sources> behind;
  std::size_t listed = 0;  // sources in all lists made so far
};

thread_local Inquiry inquiry;

/// Held while a question is answered. What is known ends with the outermost: the next one may find
/// other definitions.
class Question {
 public:
  Question() { ++inquiry.questions; }
  ~Question() {
    if (--inquiry.questions == 0) {
      inquiry.behind.clear();
      inquiry.listed = 0;
    }
  }

  Question(Question const&) = delete;
  Question& operator=(Question const&) = delete;
};

moxDefaultErrorImpl<moxError> ringError(std::string const& name) {
  std::string way;
  auto const& names = inquiry.names;
  for (auto i = std::find(names.begin(), names.end(), name); i != names.end(); ++i) {
    way += *i + " -> ";
  }
  return moxDefaultErrorImpl<moxError>("Fonte de dados externa inválida",
                                       {"a source of data reads itself: " + way + name});
}

/// Held while the source of `name` tells what it reads. A ring would be met by DepthGuard as well,
/// but without the names of those who are in it.
class RingGuard {
 public:
  explicit RingGuard(std::string const& name) {
    auto& names = inquiry.names;
    if (std::find(names.begin(), names.end(), name) != names.end()) {
      throw ringError(name);
    }
    names.push_back(name);
  }
  ~RingGuard() { inquiry.names.pop_back(); }

  RingGuard(RingGuard const&) = delete;
  RingGuard& operator=(RingGuard const&) = delete;
};

/// Valid until the outermost question is answered.
Sources const& sourcesBehind(std::string const& name, Source const& source) {
  auto const known = inquiry.behind.find(source);
  if (known != inquiry.behind.end()) {
    return known->second;
  }
  RingGuard const guard(name);
  return inquiry.behind.emplace(source, source->getRelatedDataSources(true)).first->second;
}

void append(Sources const& sources, std::string const& reader, Sources& related) {
  inquiry.listed += sources.size();
  if (inquiry.listed > kMostSourcesListed) {
    throw DepthGuard::refusal("sources of data read each other in more than " +
                                  std::to_string(kMostSourcesListed) + " ways",
                              reader);
  }
  related.insert(related.end(), sources.begin(), sources.end());
}

}  // namespace

Sources relatedDataSources(std::string const& reader, std::vector<std::string> const& names,
                           bool deep) {
  DepthGuard const guard(reader);
  Question const question;
  Sources related;
  for (auto const& name : names) {
    Source const source = findDataSource(name);
    if (source && deep) {
      append(sourcesBehind(name, source), reader, related);
    }
    if (source) {
      append({source}, reader, related);
    }
  }
  return related;
}

std::shared_ptr<moxDataSource const> sourceInContext(std::vector<moxNamedDataSource> const& sources,
                                                     std::string const& name) {
  auto const isMeant = [&](moxNamedDataSource const& named) {
    return named.second && (named.first == name || named.second->getName() == name);
  };
  auto const found = std::find_if(sources.begin(), sources.end(), isMeant);
  return found != sources.end() ? found->second : nullptr;
}

std::vector<moxDataSourceColumnType> relatedColumnsOf(
    std::vector<moxNamedDataSource> const& sources, std::string const& name) {
  DepthGuard const guard(name);
  auto const source = sourceInContext(sources, name);
  return source ? source->getRelatedColumns(sources) : std::vector<moxDataSourceColumnType>();
}
