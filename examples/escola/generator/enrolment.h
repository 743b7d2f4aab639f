#pragma once

#include <optional>
#include <string_view>

#include "escola/generator/cohort.h"

namespace escola {

/// Writes the enrolments of one class, with the marks, the attendance and the invoices of each.
class EnrolmentWriter {
 public:
  EnrolmentWriter(Context& context, SchoolClass const& schoolClass, bool newcomers)
      : context_(context), class_(schoolClass), newcomers_(newcomers) {}

  /// Ends the student's activity when he leaves, or does not come back for the next year.
  void write(Student& student);

 private:
  struct Enrolment {
    int id;
    std::optional<Day> exit;
    std::string_view exitReason;
    int scholarship;  // per cent
  };

  /// What the marks of a year add up to.
  struct Outcome {
    int subjects = 0;
    int failed = 0;
    std::int64_t average = 0;  // hundredths of a mark, summed over the subjects
  };

  Enrolment draw(Random& random);
  Outcome writeGrades(Random& random, Student const& student, Enrolment const& enrolment);
  int writeSubject(Random& random, Enrolment const& enrolment, std::size_t place, int ability);
  int writeGrade(Random& random, Enrolment const& enrolment, std::size_t place, int bimester,
                 int ability);
  void writeAttendance(Random& random, Enrolment const& enrolment, int paymentHabit);
  void writeEnrolment(Random& random, Student const& student, Enrolment const& enrolment,
                      Outcome const& outcome);
  std::string_view situation(Enrolment const& enrolment, Outcome const& outcome) const;
  bool isOver() const {
    return context_.calendar.classesEnd(class_.year) <= context_.calendar.today();
  }

  Context& context_;
  SchoolClass const& class_;
  bool newcomers_;
  int number_ = 0;  // place in the class's list
};

}  // namespace escola
