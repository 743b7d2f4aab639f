#include "zyn/datasources/related_data_sources.h"

#include <algorithm>
#include <iterator>

#include "mox/core/error.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/datasources/depth_guard.h"

namespace {

using Sources = std::vector<std::shared_ptr<moxDataSource const>>;

/// The names whose sources the calling thread is looking into, the outermost first.
thread_local std::vector<std::string> namesLookedInto;

moxDefaultErrorImpl<moxError> ringError(std::string const& name) {
  std::string way;
  auto const& names = namesLookedInto;
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
    auto& names = namesLookedInto;
    if (std::find(names.begin(), names.end(), name) != names.end()) {
      throw ringError(name);
    }
    names.push_back(name);
  }
  ~RingGuard() { namesLookedInto.pop_back(); }

  RingGuard(RingGuard const&) = delete;
  RingGuard& operator=(RingGuard const&) = delete;
};

void append(std::string const& name, bool deep, Sources& related) {
  std::shared_ptr<moxDataSource const> source = findDataSource(name);
  if (!source) {
    return;
  }
  if (deep) {
    RingGuard const guard(name);
    auto deeper = source->getRelatedDataSources(true);
    std::move(deeper.begin(), deeper.end(), std::back_inserter(related));
  }
  related.push_back(std::move(source));
}

}  // namespace

Sources relatedDataSources(std::vector<std::string> const& names, bool deep) {
  DepthGuard const guard;
  Sources related;
  for (auto const& name : names) {
    append(name, deep, related);
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
  DepthGuard const guard;
  auto const source = sourceInContext(sources, name);
  return source ? source->getRelatedColumns(sources) : std::vector<moxDataSourceColumnType>();
}
