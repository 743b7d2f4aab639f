#pragma once

#include <span>
#include <string_view>

namespace escola {

/// The tables, in the order in which the schema makes them.
enum class TableId {
  kUnits,
  kUsers,
  kUserUnits,
  kUserLibraries,
  kConfiguration,
  kPanels,
  kPanelIndicators,
  kFavouriteSections,
  kFavourites,
  kUserAreas,
  kUserAreaMembers,
  kRecommendedPlugins,
  kClassPerformance,
  kCourses,
  kSubjects,
  kEvents,
  kStaff,
  kClasses,
  kClassSubjects,
  kGuardians,
  kStudents,
  kEnrolments,
  kGrades,
  kAttendance,
  kInvoices,
  kPayments,
};

enum class ColumnType { kInt, kNumber, kDay, kMoment, kText, kBytes };

struct Column {
  std::string_view name;
  ColumnType type;
};

struct Table {
  TableId id;
  std::string_view name;  // in the database
  int keyColumns;         // the first columns, which are the primary key
  std::span<Column const> columns;
};

/// All tables, each at the place of its TableId. Columns stand in the order of the schema.
std::span<Table const> allTables();

inline Table const& tableOf(TableId id) {
  return allTables()[static_cast<std::size_t>(id)];
}

}  // namespace escola
