#include "escola/generator/cohort.h"

#include <algorithm>
#include <array>

#include "escola/generator/enrolment.h"
#include "escola/generator/network_rows.h"
#include "escola/generator/people.h"
#include "escola/generator/words.h"

namespace escola {

namespace {

constexpr int kAdult = 18;
constexpr int kStudentUser = 5;
constexpr int kStudentOfCohort = 1;  // the cohort whose first student is the user who is a student

template <class T>
T const& pickByWeight(Random& random, std::vector<T const*> const& choices) {
  int total = 0;
  for (T const* choice : choices) {
    total += choice->weight;
  }
  int draw = random.below(total);
  for (T const* choice : choices) {
    draw -= choice->weight;
    if (draw < 0) {
      return *choice;
    }
  }
  return *choices.back();
}

/// The first cohorts go round the units, so that each has students however small the database is.
Unit const& unitOfCohort(Random& random, int number) {
  std::vector<Unit const*> choices;
  for (Unit const& unit : units()) {
    choices.push_back(&unit);
  }
  Unit const& drawn = pickByWeight(random, choices);
  auto const place = static_cast<std::size_t>(number);
  return place < units().size() ? units()[place] : drawn;
}

Course const& courseAt(Random& random, Unit const& unit) {
  std::vector<Course const*> choices;
  for (Course const& course : courses()) {
    if (course.headOffice == 0 || course.headOffice == unit.headOffice) {
      choices.push_back(&course);
    }
  }
  return pickByWeight(random, choices);
}

std::vector<int> subjectsAt(Course const& course, Unit const& unit) {
  std::vector<int> result(course.subjects.begin(), course.subjects.end());
  for (Subject const& subject : subjects()) {
    if (subject.unit == unit.id) {
      result.push_back(subject.id);
    }
  }
  return result;
}

std::string levelText(Course const& course, int level) {
  std::string const number = std::to_string(course.firstLevel + level);
  return course.years == 1 ? std::string(course.shortName)
                           : number + "º " + std::string(course.shortName);
}

/// The class's fee: the course's, as dear as the unit is, raised each year, in whole reais.
Hundredths feeOf(Course const& course, Unit const& unit, int yearsOn) {
  std::int64_t const fee =
      course.monthlyFee.value * unit.pricePercent * (100 + 6 * yearsOn) / 10000;
  return {fee / 100 * 100};
}

struct Family {
  std::string_view female;
  std::string_view male;
};

constexpr auto kFamilies = std::to_array<Family>(
    {{"mãe", "pai"}, {"mãe", "pai"}, {"mãe", "pai"}, {"avó", "avô"}, {"tia", "tio"}});

}  // namespace

int CohortWriter::entryYear(Random& random, int number) const {
  // 3 has no divisor in common with 10: ten cohorts in a row start in ten different years.
  int const drawn = random.below(kSchoolYears);
  return context_.calendar.firstYear() +
         (number < kSchoolYears ? number * 3 % kSchoolYears : drawn);
}

std::string CohortWriter::nextSection(Unit const& unit, Course const& course, int finalYear) {
  std::size_t const place =
      (static_cast<std::size_t>(unit.id) * courses().size() + static_cast<std::size_t>(course.id)) *
          2 * kSchoolYears +
      static_cast<std::size_t>(finalYear - context_.calendar.firstYear());
  if (place >= sections_.size()) {
    sections_.resize(place + 1);
  }
  int const number = sections_[place]++;
  std::string const letter(1, static_cast<char>('A' + number % 26));
  return number < 26 ? letter : letter + std::to_string(number / 26 + 1);
}

CohortWriter::Cohort CohortWriter::nextCohort(Random& random) {
  Cohort cohort{};
  cohort.number = cohorts_;
  cohort.unit = &unitOfCohort(random, cohorts_);
  cohort.course = &courseAt(random, *cohort.unit);
  cohort.entryYear = entryYear(random, cohorts_);
  bool const foundHalfway = cohort.entryYear == context_.calendar.firstYear();
  int const drawnLevel = random.below(cohort.course->years);
  cohort.entryLevel = foundHalfway ? drawnLevel : 0;
  cohort.size = random.between(24, 32);
  cohort.shift = random.pick(cohort.course->shifts);
  int const finalYear = cohort.entryYear + cohort.course->years - 1 - cohort.entryLevel;
  cohort.section = nextSection(*cohort.unit, *cohort.course, finalYear);
  cohort.teacher = writeTeacher(cohort, finalYear);
  return cohort;
}

int CohortWriter::writeTeacher(Cohort const& cohort, int finalYear) {
  Employee employee{cohort.unit->id,
                    cohort.unit->headOffice,
                    0,
                    "",
                    "Docência: regência de turma",
                    {430000},
                    dayOf(cohort.entryYear, 1, 10),
                    std::nullopt};
  Day const after = context_.calendar.classesEnd(finalYear) + std::chrono::days(20);
  if (after <= context_.calendar.today() && cohort.number % 3 == 0) {
    employee.left = after;
  }
  return writeEmployee(context_, employee);
}

void CohortWriter::writeNext() {
  Random random(context_.settings.seed, Purpose::kCohort, static_cast<std::uint64_t>(cohorts_));
  Cohort const cohort = nextCohort(random);
  std::vector<Student> students = writeStudents(cohort);
  int const years = cohort.course->years - cohort.entryLevel;
  int const bound = std::min(cohort.entryYear + years - 1, context_.calendar.lastYear());
  for (int year = cohort.entryYear; year <= bound; ++year) {
    SchoolClass const schoolClass = writeClass(cohort, year);
    writeClassSubjects(cohort, schoolClass, random);
    EnrolmentWriter enrolments(context_, schoolClass, year == cohort.entryYear);
    for (Student& student : students) {
      if (student.active) {
        enrolments.write(student);
      }
    }
  }
  ++cohorts_;
}

std::vector<Student> CohortWriter::writeStudents(Cohort const& cohort) {
  std::vector<Student> students;
  students.reserve(static_cast<std::size_t>(cohort.size));
  for (int place = 0; place < cohort.size; ++place) {
    students.push_back(writeStudent(cohort, place == 0));
  }
  return students;
}

std::optional<int> CohortWriter::writeGuardian(Random& random, Cohort const& cohort, int age,
                                               std::string_view studentName) {
  bool const female = random.chance(720);
  std::string_view const family = random.chance(800) ? familyOf(studentName) : std::string_view();
  std::string const name = fullName(random, female, family);
  Family const kin = random.pick(std::span<Family const>(kFamilies));
  bool const alone = age >= kAdult && random.chance(850);
  if (alone) {
    return std::nullopt;
  }
  int const id = ++context_.guardians;
  context_.sink.row(TableId::kGuardians,
                    {id, name, cpf(4'500'000 + id), female ? kin.female : kin.male,
                     phone(random, cohort.unit->areaCode),
                     random.chance(250) ? kNull : Cell(email(name, id, "familia")),
                     random.chance(180) ? kNull : Cell(random.pick(professions()))});
  return id;
}

Student CohortWriter::writeStudent(Cohort const& cohort, bool first) {
  int const id = ++context_.students;
  Random random(context_.settings.seed, Purpose::kStudent, static_cast<std::uint64_t>(id));
  int const late =
      random.chance(120) ? random.between(1, cohort.course->entryAge >= 17 ? 22 : 2) : 0;
  int const age = cohort.course->entryAge + cohort.entryLevel + late;
  bool const isUser = first && cohort.number == kStudentOfCohort;
  bool const female = random.chance(510) && !isUser;
  std::string const drawn = fullName(random, female);
  std::string const name = isUser ? std::string(users()[kStudentUser - 1].name) : drawn;
  std::optional<int> const guardian = writeGuardian(random, cohort, age, name);
  writeStudentRow(random, cohort, {id, age, isUser, female, name, guardian});
  Student student{};
  student.id = id;
  student.ability = random.bell(73, 14);
  student.paymentHabit = random.chance(760) ? 0 : random.chance(780) ? 1 : 2;
  student.dueDay = random.between(1, 3) * 5;
  student.active = true;
  return student;
}

void CohortWriter::writeStudentRow(Random& random, Cohort const& cohort, Person const& person) {
  Unit const& unit = *cohort.unit;
  Day const registered = dayOf(cohort.entryYear, 1, 1) - std::chrono::days(random.below(60));
  Day const born =
      dayOf(cohort.entryYear - person.age, 1, 1) + std::chrono::days(random.below(365));
  std::string_view const remark = random.pick(studentRemarks());
  std::string const note = unitToken(unit.id) + (remark.empty() ? "" : " ") + std::string(remark);
  std::string const picture = random.chance(120) ? thumbnail(random) : std::string();
  context_.sink.row(
      TableId::kStudents,
      {person.id,
       unit.id,
       person.guardian,
       person.isUser ? Cell(kStudentUser) : kNull,
       std::to_string(cohort.entryYear) + padded(person.id, 6),
       person.name,
       random.chance(990) ? kNull : Cell(fullName(random, !person.female)),
       random.chance(person.age < kAdult ? 180 : 0) ? kNull : Cell(cpf(person.id)),
       born,
       person.female ? "F" : "M",
       random.chance(220) ? kNull : Cell(email(person.name, person.id, "aluno")),
       random.chance(140) ? kNull : Cell(phone(random, unit.areaCode)),
       address(random),
       random.chance(60) ? kNull : Cell(random.pick(districts())),
       unit.city,
       unit.state,
       random.chance(70) ? kNull
                         : Cell(std::string(unit.postalCode) + "-" + padded(random.below(1000), 3)),
       random.chance(260) ? kNull : Cell(Hundredths{std::max(90000, random.bell(640000, 420000))}),
       Moment(registered) + std::chrono::seconds(random.between(8 * 3600, 18 * 3600)),
       picture.empty() ? kNull : Cell(Bytes{picture}),
       note});
}

SchoolClass CohortWriter::writeClass(Cohort const& cohort, int year) {
  Unit const& unit = *cohort.unit;
  Course const& course = *cohort.course;
  int const level = cohort.entryLevel + year - cohort.entryYear;
  std::string const name = levelText(course, level) + " " + cohort.section;
  SchoolClass result{++context_.classes,
                     year,
                     &unit,
                     feeOf(course, unit, year - context_.calendar.firstYear()),
                     subjectsAt(course, unit),
                     {}};
  for (int const subject : result.subjects) {
    result.diaries.push_back(unitToken(unit.id) + std::to_string(year) + "-" +
                             std::to_string(course.firstLevel + level) + cohort.section + "-" +
                             std::string(subjects()[static_cast<std::size_t>(subject - 1)].code));
  }
  std::string const room = std::to_string(result.id % 3 + 1) + padded(result.id % 14 + 1, 2);
  context_.sink.row(TableId::kClasses,
                    {result.id, unit.id, course.id, year, course.firstLevel + level, cohort.shift,
                     name, cohort.teacher, result.id % 9 == 0 ? kNull : Cell(room), 36,
                     context_.calendar.classesBegin(year), context_.calendar.classesEnd(year),
                     result.monthlyFee, unitToken(unit.id) + " " + std::string(course.name)});
  return result;
}

void CohortWriter::writeClassSubjects(Cohort const& cohort, SchoolClass const& schoolClass,
                                      Random& random) {
  bool teacherPlaced = false;
  for (int const id : schoolClass.subjects) {
    Subject const& subject = subjects()[static_cast<std::size_t>(id - 1)];
    int const place = kManagersPerUnit + static_cast<int>(subject.field) * kTeachersPerField +
                      random.below(kTeachersPerField);
    bool const own = !teacherPlaced && random.chance(400);
    teacherPlaced = teacherPlaced || own;
    context_.sink.row(
        TableId::kClassSubjects,
        {schoolClass.id, id, own ? cohort.teacher : unitStaffId(cohort.unit->id, place)});
  }
}

}  // namespace escola
