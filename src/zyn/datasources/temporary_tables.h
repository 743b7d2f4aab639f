#pragma once

#include <string>
#include <thread>
#include <vector>

class moxDataSourceExecutionContext;

/// The temporary tables of one run, which go when it ends: they are part of the thread's
/// connection, and the next session of the thread has no right to their rows.
class TemporaryTables {
 public:
  TemporaryTables() = default;
  TemporaryTables(TemporaryTables const&) = delete;
  TemporaryTables& operator=(TemporaryTables const&) = delete;

  /// Only in the thread that they were made in; another one's connection has none of them.
  ~TemporaryTables();

  /// Before the table is made, so that one that is made by half goes as well.
  void add(std::string name) { names_.push_back(std::move(name)); }

 private:
  std::vector<std::string> names_;
  std::thread::id const thread_ = std::this_thread::get_id();
};

/// The face by which the executions of a run find its tables.
class TemporaryTableOwner {
 public:
  virtual ~TemporaryTableOwner() = default;
  virtual TemporaryTables& temporaryTables() = 0;
};

/// Has the context drop the table at its end; nothing for a context of another make.
void dropWithRun(moxDataSourceExecutionContext& context, std::string const& tableName);
