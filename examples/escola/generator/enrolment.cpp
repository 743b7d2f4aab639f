#include "escola/generator/enrolment.h"

#include <algorithm>
#include <array>

#include "escola/generator/invoices.h"

namespace escola {

namespace {

constexpr int kPassMark = 60;  // in tenths
constexpr int kFailuresCarried = 2;

/// Marks are given in steps of half a point; tenths in, tenths out.
int asMark(int tenths) {
  return std::clamp((tenths + 2) / 5 * 5, 0, 100);
}

Hundredths markCell(int tenths) {
  return {std::int64_t{tenths} * 10};
}

}  // namespace

EnrolmentWriter::Enrolment EnrolmentWriter::draw(Random& random) {
  static constexpr std::array<std::string_view, 4> kReasons{"transferido", "transferido", "evadido",
                                                            "cancelado"};
  static constexpr std::array<int, 5> kScholarships{10, 20, 25, 50, 100};
  Enrolment enrolment{++context_.enrolments, std::nullopt, "", 0};
  bool const leaves = random.chance(55);
  Day const exit =
      context_.calendar.classesBegin(class_.year) + std::chrono::days(random.between(20, 280));
  std::string_view const reason = random.pick(std::span<std::string_view const>(kReasons));
  if (leaves && exit <= context_.calendar.today()) {
    enrolment.exit = exit;
    enrolment.exitReason = reason;
  }
  if (random.chance(130)) {
    enrolment.scholarship = random.pick(std::span<int const>(kScholarships));
  }
  return enrolment;
}

void EnrolmentWriter::write(Student& student) {
  ++number_;
  Random random(context_.settings.seed, Purpose::kEnrolment, static_cast<std::uint64_t>(student.id),
                static_cast<std::uint64_t>(class_.year));
  Enrolment const enrolment = draw(random);
  Outcome const outcome = writeGrades(random, student, enrolment);
  writeAttendance(random, enrolment, student.paymentHabit);
  writeEnrolment(random, student, enrolment, outcome);
  writeInvoices(context_, {enrolment.id, student.id, &class_, enrolment.exit, enrolment.scholarship,
                           student.paymentHabit, student.dueDay});
  bool const fails = isOver() && outcome.failed > kFailuresCarried;
  bool const movesAway = random.chance(35);
  student.active = !enrolment.exit && !fails && !movesAway;
}

EnrolmentWriter::Outcome EnrolmentWriter::writeGrades(Random& random, Student const& student,
                                                      Enrolment const& enrolment) {
  Outcome outcome;
  for (std::size_t place = 0; place < class_.subjects.size(); ++place) {
    int const average = writeSubject(random, enrolment, place, random.bell(student.ability, 10));
    ++outcome.subjects;
    outcome.failed += average < kPassMark * 10 ? 1 : 0;
    outcome.average += average;
  }
  return outcome;
}

/// Gives the subject's average in hundredths of a mark; a mark that was never given counts as none.
int EnrolmentWriter::writeSubject(Random& random, Enrolment const& enrolment, std::size_t place,
                                  int ability) {
  int sum = 0;
  int count = 0;
  for (int bimester = 1; bimester <= kBimesters; ++bimester) {
    int const mark = writeGrade(random, enrolment, place, bimester, ability);
    if (mark >= 0) {
      sum += mark;
      ++count;
    }
  }
  return count == 0 ? 0 : sum * 10 / count;
}

/// Gives the mark that counts, in tenths, or -1 when there is none.
int EnrolmentWriter::writeGrade(Random& random, Enrolment const& enrolment, std::size_t place,
                                int bimester, int ability) {
  Day const end = context_.calendar.bimesterEnd(class_.year, bimester);
  Day const entered = end + std::chrono::days(random.between(1, 24));
  int const mark = asMark(random.bell(ability, 17));
  bool const absent = random.chance(18);
  bool const tries = random.chance(800);
  int const second = std::min(100, mark + random.between(1, 7) * 5);
  int const lessonsMissed = std::max(0, random.bell(1, 4));
  if (enrolment.exit && *enrolment.exit < end) {
    return -1;
  }
  bool const given = entered <= context_.calendar.today();
  bool const hasMark = given && !absent;
  bool const hasSecond = hasMark && mark < kPassMark && tries;
  int const id = ++context_.grades;
  if (id <= context_.gradeBound) {
    context_.sink.row(TableId::kGrades, {id, class_.unit->id, enrolment.id, class_.subjects[place],
                                         bimester, hasMark ? Cell(markCell(mark)) : kNull,
                                         hasSecond ? Cell(markCell(second)) : kNull,
                                         given ? Cell(lessonsMissed) : kNull,
                                         given ? Cell(entered) : kNull, class_.diaries[place]});
  }
  return hasSecond ? second : hasMark ? mark : -1;
}

void EnrolmentWriter::writeAttendance(Random& random, Enrolment const& enrolment,
                                      int paymentHabit) {
  for (int month = 2; month <= 12; ++month) {
    Day const first = dayOf(class_.year, month, 1);
    bool const closed = monthsLater(first, 1) <= context_.calendar.today();
    int const days = context_.calendar.schoolDays(month);
    int const missed = std::clamp(random.bell(paymentHabit == 2 ? 2 : 1, 4), 0, days);
    int const excused = random.below(missed + 1);
    bool const recorded = closed && !random.chance(10);
    if (first > context_.calendar.today() || (enrolment.exit && first > *enrolment.exit)) {
      return;
    }
    context_.sink.row(TableId::kAttendance, {++context_.attendance, class_.unit->id, enrolment.id,
                                             first, days, recorded ? Cell(missed) : kNull,
                                             recorded && missed > 0 ? Cell(excused) : kNull});
  }
}

std::string_view EnrolmentWriter::situation(Enrolment const& enrolment,
                                            Outcome const& outcome) const {
  if (enrolment.exit) {
    return enrolment.exitReason;
  }
  if (!isOver()) {
    return "cursando";
  }
  if (outcome.failed > kFailuresCarried) {
    return "reprovado";
  }
  return outcome.failed > 0 ? "aprovado com dependência" : "aprovado";
}

void EnrolmentWriter::writeEnrolment(Random& random, Student const& student,
                                     Enrolment const& enrolment, Outcome const& outcome) {
  Day const usual = dayOf(class_.year - 1, 12, 1) + std::chrono::days(random.below(55));
  Day const lateOne =
      context_.calendar.classesBegin(class_.year) + std::chrono::days(random.below(15));
  Day const enrolled =
      std::min(newcomers_ && random.chance(60) ? lateOne : usual, context_.calendar.today());
  bool const hasAverage = isOver() && !enrolment.exit;
  // Two places, as a report card shows it.
  Hundredths const average{(outcome.average + outcome.subjects / 2) / outcome.subjects};
  std::string note = unitToken(class_.unit->id);
  if (random.chance(40)) {
    note += " Matrícula condicionada à entrega do histórico.";
  }
  context_.sink.row(TableId::kEnrolments,
                    {enrolment.id, class_.unit->id, student.id, class_.id, number_, enrolled,
                     enrolment.exit, situation(enrolment, outcome),
                     enrolment.scholarship == 0 ? kNull : Cell(enrolment.scholarship),
                     hasAverage ? Cell(average) : kNull, note});
}

}  // namespace escola
