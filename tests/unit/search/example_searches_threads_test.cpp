#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "escola/generator/example_database.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/search/search.h"
#include "mox/zyn/search/search_runner.h"
#include "support/many_threads.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kThreads = 64;
constexpr int kUnits = 7;

// Unit 1 rules the first five, unit 6 the others.
int headOfficeOf(int unit) {
  return unit < 6 ? 1 : 6;
}

std::string textOf(std::filesystem::path const& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The example school with all of its definitions, and a session for each of its units.
class ExampleSearchesThreads : public testing::Test {
 protected:
  ExampleSearchesThreads() {
    escola::BuildOptions options;
    options.url = url_;
    options.scale = escola::parseScale("tiny");
    escola::buildExample(*escola::openForExample(url_, ""), options);
    for (auto const& file : std::filesystem::directory_iterator(TEST_EXAMPLE_DEFINITIONS_DIR)) {
      addDefinitions(textOf(file.path()));
    }
    for (int unit = 1; unit <= kUnits; ++unit) {
      sessions_.push_back(host_.application().sessions().open(
          {.id = unit,
           .defaultUnit = unit,
           .units = {{unit, headOfficeOf(unit)}, {headOfficeOf(unit), headOfficeOf(unit)}},
           .worksByUnits = true}));
    }
  }

  void addDefinitions(std::string const& text) {
    auto const collection = shareDefinitions(host_, text);
    for (auto const& item : collection->items().get()) {
      if (std::dynamic_pointer_cast<moxSearch const>(item)) {
        names_.push_back(item->description());
      }
    }
  }

  /// All that a screen would show of a search to the calling thread's session, cell by cell.
  std::string screenOf(std::string const& name) {
    auto const runner = host_.get<moxSearchRunner>("moxSearchRunner");
    runner->load(std::dynamic_pointer_cast<moxSearch const>(cache_->getCollection(name)));
    runner->performSql();
    std::string text;
    for (unsigned int row = 0; row < runner->rowCount(); ++row) {
      for (unsigned int column = 0; column < runner->getDataMatrix()->columnCount(); ++column) {
        text += runner->getIcon(row, column) + runner->getVisibleValue(row, column) + "|";
      }
      text += '\n';
    }
    return text;
  }

  /// Per session, one behind the other.
  std::vector<std::string> screensOneByOne(std::string const& name) {
    std::vector<std::string> screens;
    for (auto const& session : sessions_) {
      SessionScope const scope(session);
      screens.push_back(screenOf(name));
    }
    return screens;
  }

  TemporaryDirectory directory_;
  std::string url_ = "sqlite:" + (directory_.path() / "escola.db").string() + "?mode=rwc";
  TestHost host_{url_};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::string> names_;
  std::vector<std::shared_ptr<Session>> sessions_;
};

}  // namespace

TEST_F(ExampleSearchesThreads, SixtyFourThreadsSeeWhatOneSees) {
  ASSERT_EQ(names_.size(), 5U);
  std::map<std::string, std::vector<std::string>> expected;
  for (auto const& name : names_) {
    expected[name] = screensOneByOne(name);
    auto const& screens = expected[name];
    EXPECT_NE(screens.front(), screens.back()) << name << ": sessions see the same rows";
    EXPECT_TRUE(std::ranges::all_of(screens, [](auto const& screen) { return !screen.empty(); }))
        << name;
  }
  std::atomic<int> faults = 0;
  runInThreads(kThreads, 1, kThreads, [&](int number) {
    auto const unit = static_cast<std::size_t>(number % kUnits);
    SessionScope const scope(sessions_[unit]);
    for (std::size_t i = 0; i < names_.size(); ++i) {
      auto const& name = names_[(static_cast<std::size_t>(number) + i) % names_.size()];
      faults += screenOf(name) == expected.at(name)[unit] ? 0 : 1;
    }
  });
  EXPECT_EQ(faults, 0);
}
