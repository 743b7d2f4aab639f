#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/join_data_source.h"
#include "zyn/datasources/derived_data_source.h"

/// The definition of a join.
class JoinDataSource final : public DerivedDataSource<moxJoinDataSource>,
                             public std::enable_shared_from_this<JoinDataSource> {
 public:
  std::string name() const override { return "moxJoinDataSource"; }

  /// Throws UnknownColumnClass for a column of another kind than the four that may be listed; the
  /// definition then stays as it was.
  bool load(std::shared_ptr<moxXMLNode> node) override;

  /// Throws std::out_of_range for a column of blobs, which the form has no element for.
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// By alias, source by source.
  std::vector<moxDataSourceColumnType> getColumns() const override;
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setSources(std::vector<JoinData> const& sources) override { sources_ = sources; }
  std::vector<JoinData> getSources() const override { return sources_; }

  /// The list itself, for runs: getSources copies.
  std::vector<JoinData> const& sources() const { return sources_; }

 protected:
  std::vector<std::string> inputNames() const override;

 private:
  std::vector<JoinData> sources_;
};
