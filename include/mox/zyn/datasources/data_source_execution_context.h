#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxDataMatrixRow;
class moxDataMatrixSQLFilter;
class moxDataSourceExecution;
class moxDataSourceExecutionProgressNotifier;
class moxDataSourceOptionData;
class moxReportExecutionContext;

/// An entry of a run's list: the name of the result, whether the source comes from outside the
/// collection, and the execution, never empty.
using moxDataSourceToProcess =
    std::pair<std::string, std::pair<bool, std::shared_ptr<moxDataSourceExecution>>>;

/// One run: the matrices made so far, and the filters, options and business units that rule it.
/// Registered as "moxDataSourceExecutionContext", a new one on every call. Used by one thread. All
/// names compare byte by byte. A run that must be repeated gets a new context and new executions.
class moxDataSourceExecutionContext : public virtual moxPluginBase {
 public:
  /// The user's filters for a source. The first call for a name wins; a later one gives false and
  /// changes nothing.
  virtual bool setDataSourceFilters(
      std::string const& source,
      std::vector<std::shared_ptr<moxDataMatrixSQLFilter>> const& filters) = 0;

  /// The user's filters for a source, then the program's own; empty when there are none. A run may
  /// rename them for the time of a query.
  virtual std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>> getDataSourceFilters(
      std::string const& source) const = 0;

  /// Adds a filter that the program itself imposes.
  virtual void addDataSourceFixedFilter(std::string const& source,
                                        std::shared_ptr<moxDataMatrixSQLFilter const> filter) = 0;

  /// A matrix made by the run, shared with all who ask; empty when the name is unknown.
  virtual std::shared_ptr<moxDataMatrix> getDataMatrix(std::string const& name) const = 0;

  /// False, and nothing changes, for an empty matrix and for a name that is taken.
  virtual bool registerDataMatrix(std::string const& name,
                                  std::shared_ptr<moxDataMatrix> matrix) = 0;

  /// Runs the list in its order, which must put a source behind those that it reads. `units` and
  /// `headOffice` are the run's business units; without units the session's default unit counts,
  /// and with 0 its head office. The notifier may be empty; when it asks to stop, the run ends
  /// early and may be called again. A context that has run its list keeps its matrices and runs
  /// nothing more. Always true. Throws what an execution throws, and moxError "Falha: " with the
  /// entry's name for one that gives false.
  virtual bool processDataSources(std::shared_ptr<moxDataSourceExecutionProgressNotifier> notifier,
                                  std::vector<moxDataSourceToProcess> const& list,
                                  std::vector<int> units, int headOffice) = 0;

  /// The row cursor kept under `rowKey`, the same for all who ask with that key; when there is none
  /// yet, a new one at the first row of the matrix of that name. Empty when the matrix is unknown
  /// too.
  virtual std::shared_ptr<moxDataMatrixRow> getDataSourceRow(std::string const& rowKey,
                                                             std::string const& matrixName) = 0;

  /// The smallest name under which this very matrix is registered; empty when it is not.
  virtual std::string getDataMatrixName(
      std::shared_ptr<moxDataMatrix const> const& matrix) const = 0;

  /// The user's answers to a source's options. The first call for a name wins, as for the filters.
  virtual bool setDataSourceOptions(
      std::string const& source,
      std::vector<std::shared_ptr<moxDataSourceOptionData>> const& options) = 0;
  virtual std::vector<std::shared_ptr<moxDataSourceOptionData const>> getDataSourceOptions(
      std::string const& source) const = 0;

  /// Whether a list was run to its end.
  virtual bool dataSourcesProcessed() const = 0;

  /// What a report lends to the run; empty for none. Only kept for those who ask.
  virtual void setReportContext(std::shared_ptr<moxReportExecutionContext> reportContext) = 0;
  virtual std::shared_ptr<moxReportExecutionContext> getReportContext() const = 0;

  /// Forgets the row cursors, so that the next ones stand at the first row again.
  virtual void resetRows() = 0;

  /// The business units of the run, and their head office; empty and 0 before a run and without a
  /// session.
  virtual std::vector<int> getIdUnidadeNegocio() const = 0;
  virtual int getIdUnidadeMatriz() const = 0;
};
