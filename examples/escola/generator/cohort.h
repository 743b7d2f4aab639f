#pragma once

#include <optional>
#include <string>
#include <vector>

#include "escola/generator/catalog.h"
#include "escola/generator/generation.h"
#include "escola/generator/random.h"

namespace escola {

/// A class in one school year, as its enrolments need to know it.
struct SchoolClass {
  int id;
  int year;
  Unit const* unit;
  Hundredths monthlyFee;
  std::vector<int> subjects;
  std::vector<std::string> diaries;  // a subject each: "[U3]2019-7B-MAT"
};

struct Student {
  int id;
  int ability;         // of a mark in tenths, 0 to 100
  int paymentHabit;    // 0 on time, 1 as it comes, 2 in arrears
  int dueDay;          // day of the month on which invoices are due
  bool active = true;  // still in the school
};

/// Writes cohorts one after another: some thirty students of one unit, course and shift who start
/// together, move up together year by year, and some of whom leave on the way.
class CohortWriter {
 public:
  explicit CohortWriter(Context& context) : context_(context) {}

  void writeNext();

 private:
  struct Cohort {
    int number;
    Unit const* unit;
    Course const* course;
    int entryYear;
    int entryLevel;  // 0 for the course's first year
    int size;
    int teacher;
    std::string shift;
    std::string section;  // "B" in "7º ano B"
  };

  struct Person {
    int id;
    int age;
    bool isUser;
    bool female;
    std::string name;
    std::optional<int> guardian;
  };

  Cohort nextCohort(Random& random);
  int entryYear(Random& random, int number) const;
  std::string nextSection(Unit const& unit, Course const& course, int finalYear);
  int writeTeacher(Cohort const& cohort, int finalYear);
  std::vector<Student> writeStudents(Cohort const& cohort);
  Student writeStudent(Cohort const& cohort, bool first);
  void writeStudentRow(Random& random, Cohort const& cohort, Person const& person);
  std::optional<int> writeGuardian(Random& random, Cohort const& cohort, int age,
                                   std::string_view studentName);
  SchoolClass writeClass(Cohort const& cohort, int year);
  void writeClassSubjects(Cohort const& cohort, SchoolClass const& schoolClass, Random& random);

  Context& context_;
  int cohorts_ = 0;
  std::vector<int> sections_;  // how many there are, by unit, course and final year
};

}  // namespace escola
