#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/group_data_source.h"
#include "unit/datasources/context_fixture.h"
#include "zyn/items/typed_collection.h"

/// Sources that do what a test says. `Interface` is moxDataSource or one derived from it.
namespace search_test {

using Columns = std::vector<moxDataSourceColumnType>;

template <class Interface>
class FakeSourceOf : public virtual Interface {
 public:
  using Work = mox_test::FakeExecution::Work;

  explicit FakeSourceOf(std::string sourceName, Columns columns = {}, Work work = {})
      : sourceName_(std::move(sourceName)), columns_(std::move(columns)), work_(std::move(work)) {}

  std::string name() const override { return "fakeSource"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return false; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return false; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }
  Columns getColumns() const override { return columns_; }
  void setName(std::string const& name) override { sourceName_ = name; }
  std::string getName() const override { return sourceName_; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }
  Columns getRelatedColumns(std::vector<moxNamedDataSource> const&) const override {
    return columns_;
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override {
    return std::make_shared<mox_test::FakeExecution>(work_);
  }

 private:
  std::string sourceName_;
  Columns columns_;
  Work work_;
};

using FakeSource = FakeSourceOf<moxDataSource>;

/// A member under a name, with a source of its own.
class FakeMember final : public moxDadoDataSource {
 public:
  FakeMember(std::string memberName, std::shared_ptr<moxDataSource> source)
      : memberName_(std::move(memberName)), source_(std::move(source)) {}

  std::string name() const override { return "fakeMember"; }
  void setDataSourceRelation(Relation const&) override {}
  Relation getDataSourceRelation() const override { return {}; }
  void setDataSource(std::shared_ptr<moxDataSource> dataSource) override { source_ = dataSource; }
  std::shared_ptr<moxDataSource> getDataSource() override { return source_; }
  std::shared_ptr<moxDataSource const> getDataSource() const override { return source_; }
  bool load(std::shared_ptr<moxXMLNode>) override { return false; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return false; }
  std::string getName() const override { return memberName_; }
  void setName(std::string const& name) override { memberName_ = name; }
  std::string dataSourceExterno() const override { return {}; }
  void setDataSourceExterno(std::string const&) override {}
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const&) override {}
  std::vector<std::pair<std::string, std::string>> getDataSourceExternalRelation() const override {
    return {};
  }
  void setUnificarTelaFiltro(bool) override {}
  bool getUnificarTelaFiltro() const override { return false; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  void setDataSource(std::shared_ptr<moxDataSource const>) override {}

 private:
  std::string memberName_;
  std::shared_ptr<moxDataSource> source_;
};

class FakeGroup final : public FakeSourceOf<moxGroupDataSource> {
 public:
  using FakeSourceOf::FakeSourceOf;

  Members& dataSources() override { return members_; }
  Members const& dataSources() const override { return members_; }
  void setOutputSource(std::string const& member) override { outputSource_ = member; }
  std::string getOutputSource() const override { return outputSource_; }
  void setFilterSource(std::string const& member) override { filterSource_ = member; }
  std::string getFilterSource() const override { return filterSource_; }

 private:
  moxSortableTypedCollectionImplementation<moxDadoDataSource, FakeGroup> members_;
  std::string outputSource_;
  std::string filterSource_;
};

}  // namespace search_test
