#pragma once

#include <optional>

#include "escola/generator/cohort.h"

namespace escola {

/// What an enrolment's invoices depend on.
struct Account {
  int enrolment;
  int student;
  SchoolClass const* schoolClass;
  std::optional<Day> exit;
  int scholarship;   // per cent
  int paymentHabit;  // as in Student
  int dueDay;        // of the month
};

/// Writes the twelve invoices of an enrolment's year, as far as they were issued, and what was paid
/// on them. An invoice that is paid has received its value less the discount, plus the charges for
/// being late.
void writeInvoices(Context& context, Account const& account);

}  // namespace escola
