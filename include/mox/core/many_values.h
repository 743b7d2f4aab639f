#pragma once

#include <string>
#include <vector>

/// What is known of a value when the question is how it can be sent. The rest are days, moments,
/// bytes, and numbers that are not finite.
enum class moxValueKind { kNull, kInt, kDouble, kText, kOther };

/// Second face of a database connection, asked for by dynamic_cast: what becomes of statements
/// with more values than the database takes marks. They are prepared, bound and executed as all
/// others; the connection finds another way for some of their values, and refuses the statement at
/// its execution where there is none. Safe from any thread, and asks no database.
class moxManyValues {
 public:
  virtual ~moxManyValues() = default;

  /// How the values of the statement, one for each mark in order, will reach the database: a
  /// sentence in English, for people. Empty where every value has a mark of its own, as is usual.
  virtual std::string howSent(std::string const& sql,
                              std::vector<moxValueKind> const& values) const = 0;
};
