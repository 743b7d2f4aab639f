#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/union_data_source.h"
#include "zyn/datasources/derived_data_source.h"

/// The definition of rows of several sources, one below the other.
class UnionDataSource final : public DerivedDataSource<moxUnionDataSource>,
                              public std::enable_shared_from_this<UnionDataSource> {
 public:
  std::string name() const override { return "moxUnionDataSource"; }

  /// Replaces what is there. Throws UnknownColumnClass, and changes nothing, for a column's element
  /// that is named like no class of columns.
  bool load(std::shared_ptr<moxXMLNode> node) override;

  /// Throws std::out_of_range for a column of a kind that has no element.
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// Those of the first source.
  std::vector<moxDataSourceColumnType> getColumns() const override;
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setSources(std::vector<UnionData> const& sources, bool gerarTabelaTemporaria) override {
    sources_ = sources;
    gerarTabelaTemporaria_ = gerarTabelaTemporaria;
  }
  std::vector<UnionData> getSources() const override { return sources_; }
  bool getGerarTabelaTemporaria() const override { return gerarTabelaTemporaria_; }

  /// The sources without a copy.
  std::vector<UnionData> const& sourceList() const { return sources_; }

 private:
  std::vector<std::string> inputNames() const override;

  std::vector<UnionData> sources_;
  bool gerarTabelaTemporaria_ = false;
};
