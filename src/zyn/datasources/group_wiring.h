#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"

class RunRecorder;

/// The members of one run of a group, each with an execution of its own, and what they do to each
/// other. A member that works on another one stands behind it: it is wired when it is added, to
/// those that are there. All is done before the first member runs.
class GroupWiring {
 public:
  using Member = std::shared_ptr<moxDadoDataSource const>;
  using Execution = std::shared_ptr<moxDataSourceExecution>;
  using FilterSource = std::shared_ptr<moxFilterDataSource const>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  /// `recorder`, null for none, is told who works on whom, and lives as long as the wiring.
  explicit GroupWiring(std::string group, RunRecorder* recorder = nullptr)
      : group_(std::move(group)), recorder_(recorder) {}

  /// Adds a member that is not the definition's own. Throws moxError "Fonte de dados externa
  /// inválida" for one without a source, and "Não localizado source origem do filtro" for a filter
  /// source that leads to no query: to nobody, to one that is added later, to itself.
  void addMember(Member const& member) { add(member, false); }

  /// Adds the definition's members in their order, and throws as addMember does.
  void addMembersOf(moxGroupDataSource const& definition);

  /// Has a manager that stands for the whole group rule the queries called `name`.
  void ruleMember(std::string const& name, ManageFilterData manager);

  /// Has a filter source from outside change the members that it aims at, "group->member", or
  /// those called `name` when it aims at none. Throws as addMember does.
  void changeMember(std::string const& name, FilterSource const& filter);

  /// Empty when no member bears the name.
  Execution executionOf(std::string const& name) const;

  /// The members as a context runs them.
  std::vector<moxDataSourceToProcess> list() const;

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct Wired {
    Member member;
    std::string name;
    std::shared_ptr<moxDataSource const> source;
    Execution execution;
    std::shared_ptr<moxSQLDataSourceExecution> sql;  // the execution, if it is a query's
    FilterSource filter;                             // the source, if it is a filter source
    bool ofDefinition;
  };

  void add(Member const& member, bool ofDefinition);
  Wired wired(Member const& member, bool ofDefinition) const;
  void updateRelation(std::size_t index);
  void restrict(Wired const& wired) const;
  void attach(std::size_t index, FilterSource const& filter) const;
  Wired const& queryBehind(std::size_t index) const;
  void rule(Wired const& manager, moxManageFilterDataSource const& definition) const;
  std::size_t find(std::string const& name) const;
  void tell(std::string sentence) const;

  std::string const group_;
  RunRecorder* const recorder_;
  std::vector<Wired> members_;  // in the order of being added
};
