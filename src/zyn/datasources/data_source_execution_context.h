#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/run_report.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/temporary_tables.h"

/// The one place of a run where its matrices, filters, options and units are held. Used by one
/// thread.
class DataSourceExecutionContext final
    : public virtual moxDataSourceExecutionContext,
      public moxRunReporter,
      public RunRecorderHolder,
      public TemporaryTableOwner,
      public std::enable_shared_from_this<DataSourceExecutionContext> {
 public:
  using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;
  using ConstFilter = std::shared_ptr<moxDataMatrixSQLFilter const>;
  using Option = std::shared_ptr<moxDataSourceOptionData>;
  using ConstOption = std::shared_ptr<moxDataSourceOptionData const>;
  using Notifier = std::shared_ptr<moxDataSourceExecutionProgressNotifier>;
  using List = std::vector<moxDataSourceToProcess>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  std::string name() const override { return "moxDataSourceExecutionContext"; }

  /// An empty filter would widen the result unseen: std::invalid_argument.
  bool setDataSourceFilters(std::string const& source, std::vector<Filter> const& filters) override;
  std::vector<ConstFilter> getDataSourceFilters(std::string const& source) const override;
  void addDataSourceFixedFilter(std::string const& source, ConstFilter filter) override;
  std::shared_ptr<moxDataMatrix> getDataMatrix(std::string const& name) const override;
  bool registerDataMatrix(std::string const& name, std::shared_ptr<moxDataMatrix> matrix) override;

  /// A list with an empty execution throws std::invalid_argument and runs nothing.
  bool processDataSources(Notifier notifier, List const& list, std::vector<int> units,
                          int headOffice) override;
  std::shared_ptr<moxDataMatrixRow> getDataSourceRow(std::string const& rowKey,
                                                     std::string const& matrixName) override;
  std::string getDataMatrixName(std::shared_ptr<moxDataMatrix const> const& matrix) const override;
  bool setDataSourceOptions(std::string const& source, std::vector<Option> const& options) override;
  std::vector<ConstOption> getDataSourceOptions(std::string const& source) const override;
  bool dataSourcesProcessed() const override { return processed_; }
  void setReportContext(std::shared_ptr<moxReportExecutionContext> reportContext) override;
  std::shared_ptr<moxReportExecutionContext> getReportContext() const override;
  void resetRows() override { dataRows_.clear(); }
  std::vector<int> getIdUnidadeNegocio() const override { return units_.units; }
  int getIdUnidadeMatriz() const override { return units_.headOffice; }

  void keepRunReport() override;
  void composeOnly() override;
  moxRunReport runReport() const override;
  std::vector<std::string> sourcesAtWork() const override;

  TemporaryTables& temporaryTables() override { return temporaryTables_; }

  RunRecorder* runRecorder() const override { return recorder_.get(); }
  bool isFixedFilter(std::string const& source, ConstFilter const& filter) const override;

  /// Hands what was aimed at a group, under any of its names, to the member `filterSource` of the
  /// group's own context: the filters of `groupName`, `targetName` (empty for none) and
  /// `filterSource`, each name once, and those given for a manager that it lets through. What is
  /// aimed at "group->member" goes to that member, whichever it is. The fixed ones arrive as fixed
  /// ones. The child lives as long as this context, and what it runs is part of this run's report.
  /// Throws std::invalid_argument for an empty child and for this context.
  void appendContext(std::shared_ptr<moxDataSourceExecutionContext> const& child,
                     std::string const& filterSource, std::string const& groupName,
                     std::string const& targetName,
                     std::vector<ManageFilterData> const& manageData) const;

 private:
  void runList(Notifier const& notifier, List const& list);
  void runEntry(moxDataSourceToProcess const& entry);
  void runRecorded(moxDataSourceToProcess const& entry, bool needed);
  void shareRecorder(moxDataSourceExecutionContext& child, std::vector<std::string> const& names,
                     std::vector<ManageFilterData> const& manageData) const;

  std::map<std::string, std::shared_ptr<moxDataMatrix>> dataMatrices_;
  std::map<std::string, std::shared_ptr<moxDataMatrixRow>> dataRows_;  // by row key
  std::map<std::string, std::vector<Filter>> dataSourceFilters_;       // the user's, by source
  std::map<std::string, std::vector<ConstFilter>> dataSourceFixedFilters_;
  std::map<std::string, std::vector<ConstOption>> dataSourceOptions_;
  bool processed_ = false;
  std::optional<std::string> atWork_;  // also when it has thrown
  std::shared_ptr<moxReportExecutionContext> reportContext_;
  mutable std::vector<std::shared_ptr<moxDataSourceExecutionContext>> appendedContexts_;
  TemporaryTables temporaryTables_;
  RunUnits units_;
  std::shared_ptr<RunRecorder> recorder_;  // empty unless a report is kept
};
