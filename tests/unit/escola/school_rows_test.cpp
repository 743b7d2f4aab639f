#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "escola/generator/catalog.h"
#include "unit/escola/collected_rows.h"

// What must hold of every generated school, whatever its size.

namespace {

using escola::Cell;
using escola::TableId;
using escola_test::column;
using escola_test::columnIndex;
using escola_test::Row;
using escola_test::tinySchool;
using escola_test::Value;

std::vector<Value> tiny(TableId table, std::string_view name) {
  return column(tinySchool(), table, name);
}

struct Reference {
  TableId from;
  std::string_view column;
  TableId to;
};

std::vector<Reference> references() {
  return {{TableId::kUnits, "id_unidadematriz", TableId::kUnits},
          {TableId::kUsers, "id_unidadepadrao", TableId::kUnits},
          {TableId::kStaff, "id_unidade", TableId::kUnits},
          {TableId::kStaff, "id_usuario", TableId::kUsers},
          {TableId::kClasses, "id_curso", TableId::kCourses},
          {TableId::kClasses, "id_professorresponsavel", TableId::kStaff},
          {TableId::kClassSubjects, "id_turma", TableId::kClasses},
          {TableId::kClassSubjects, "id_disciplina", TableId::kSubjects},
          {TableId::kClassSubjects, "id_professor", TableId::kStaff},
          {TableId::kStudents, "id_unidade", TableId::kUnits},
          {TableId::kStudents, "id_responsavel", TableId::kGuardians},
          {TableId::kStudents, "id_usuario", TableId::kUsers},
          {TableId::kEnrolments, "id_aluno", TableId::kStudents},
          {TableId::kEnrolments, "id_turma", TableId::kClasses},
          {TableId::kGrades, "id_matricula", TableId::kEnrolments},
          {TableId::kGrades, "id_disciplina", TableId::kSubjects},
          {TableId::kAttendance, "id_matricula", TableId::kEnrolments},
          {TableId::kInvoices, "id_matricula", TableId::kEnrolments},
          {TableId::kPayments, "id_fatura", TableId::kInvoices}};
}

/// Length of the UTF-8 sequence at the beginning, 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
  auto const lead = static_cast<unsigned char>(text[0]);
  std::size_t const length = lead < 0x80                   ? 1
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  if (length == 0 || length > text.size()) {
    return 0;
  }
  bool const continued =
      std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length),
                  [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; });
  return continued ? length : 0;
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    std::size_t const length = sequenceLength(text);
    if (length == 0) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

TEST(EscolaSchool, EveryReferenceHasItsRow) {
  for (Reference const& reference : references()) {
    auto const rows = static_cast<std::int64_t>(tinySchool().of(reference.to).size());
    for (Value const& value : tiny(reference.from, reference.column)) {
      EXPECT_TRUE(value.isNull() || (value.number >= 1 && value.number <= rows))
          << escola::tableOf(reference.from).name << "." << reference.column << " = "
          << value.number;
    }
  }
}

TEST(EscolaSchool, EveryCellIsOfItsColumnsType) {
  static constexpr std::array<Cell::Kind, 6> kKinds{Cell::Kind::kInt,  Cell::Kind::kHundredths,
                                                    Cell::Kind::kDay,  Cell::Kind::kMoment,
                                                    Cell::Kind::kText, Cell::Kind::kBytes};
  for (escola::Table const& table : escola::allTables()) {
    ASSERT_FALSE(tinySchool().of(table.id).empty()) << table.name;
    for (Row const& row : tinySchool().of(table.id)) {
      ASSERT_EQ(row.size(), table.columns.size()) << table.name;
      for (std::size_t place = 0; place < row.size(); ++place) {
        ASSERT_TRUE(row[place].isNull() ||
                    row[place].kind == kKinds[static_cast<std::size_t>(table.columns[place].type)])
            << table.name << "." << table.columns[place].name;
      }
    }
  }
}

TEST(EscolaSchool, TheUnitsTokenStandsInATextOfEveryRow) {
  for (auto const& [table, text] : {std::pair{TableId::kUnits, "observacao"},
                                    {TableId::kSubjects, "ementa"},
                                    {TableId::kEvents, "descricao"},
                                    {TableId::kStaff, "observacao"},
                                    {TableId::kClasses, "observacao"},
                                    {TableId::kStudents, "observacao"},
                                    {TableId::kEnrolments, "observacao"},
                                    {TableId::kGrades, "diario"},
                                    {TableId::kInvoices, "descricao"},
                                    {TableId::kPayments, "documento"}}) {
    auto const units = tiny(table, table == TableId::kUnits ? "id" : "id_unidade");
    auto const texts = tiny(table, text);
    for (std::size_t row = 0; row < units.size(); ++row) {
      std::string const token = escola::unitToken(static_cast<int>(units[row].number));
      EXPECT_TRUE(texts[row].isNull() || texts[row].text.starts_with(token))
          << escola::tableOf(table).name << ": " << texts[row].text;
    }
  }
}

TEST(EscolaSchool, ARowBelongsToTheUnitOfTheRowThatItHangsOn) {
  for (auto const& [from, key, to] :
       {std::tuple{TableId::kEnrolments, "id_aluno", TableId::kStudents},
        {TableId::kEnrolments, "id_turma", TableId::kClasses},
        {TableId::kGrades, "id_matricula", TableId::kEnrolments},
        {TableId::kAttendance, "id_matricula", TableId::kEnrolments},
        {TableId::kInvoices, "id_matricula", TableId::kEnrolments},
        {TableId::kPayments, "id_fatura", TableId::kInvoices}}) {
    auto const keys = tiny(from, key);
    auto const units = tiny(from, "id_unidade");
    auto const owners = tiny(to, "id_unidade");
    for (std::size_t row = 0; row < keys.size(); ++row) {
      ASSERT_EQ(units[row], owners[static_cast<std::size_t>(keys[row].number - 1)])
          << escola::tableOf(from).name << " row " << row;
    }
  }
}

TEST(EscolaSchool, TeachersTeachInTheirOwnUnit) {
  auto const classUnits = tiny(TableId::kClasses, "id_unidade");
  auto const staffUnits = tiny(TableId::kStaff, "id_unidade");
  for (Row const& row : tinySchool().of(TableId::kClassSubjects)) {
    EXPECT_EQ(classUnits[static_cast<std::size_t>(row[0].number - 1)],
              staffUnits[static_cast<std::size_t>(row[2].number - 1)]);
  }
}

TEST(EscolaSchool, EveryUnitAndEverySchoolYearHasClasses) {
  std::set<std::int64_t> units;
  std::set<std::int64_t> years;
  for (Row const& row : tinySchool().of(TableId::kClasses)) {
    units.insert(row[columnIndex(TableId::kClasses, "id_unidade")].number);
    years.insert(row[columnIndex(TableId::kClasses, "ano")].number);
  }
  EXPECT_EQ(units.size(), escola::units().size());
  EXPECT_EQ(years.size(), 10U);
  EXPECT_EQ(*years.begin(), 2015);
  EXPECT_EQ(*years.rbegin(), 2024);
}

TEST(EscolaSchool, HeadOfficesAreTheirOwnAndThereAreTwo) {
  std::set<std::int64_t> heads;
  for (Row const& row : tinySchool().of(TableId::kUnits)) {
    std::int64_t const head = row[columnIndex(TableId::kUnits, "id_unidadematriz")].number;
    heads.insert(head);
    EXPECT_EQ(tinySchool().of(TableId::kUnits)[static_cast<std::size_t>(head - 1)][4].number, head);
  }
  EXPECT_EQ(heads, (std::set<std::int64_t>{1, 6}));
}

TEST(EscolaSchool, ClassNamesAreUniqueInTheirUnitAndYear) {
  std::set<std::tuple<std::int64_t, std::int64_t, std::int64_t, std::string>> seen;
  auto const rows = escola_test::collect({60, 0});
  for (Row const& row : rows.of(TableId::kClasses)) {
    EXPECT_TRUE(seen.insert({row[1].number, row[2].number, row[3].number, row[6].text}).second)
        << row[6].text;
  }
}

TEST(EscolaSchool, TextsAreValidUtf8) {
  for (escola::Table const& table : escola::allTables()) {
    for (Row const& row : tinySchool().of(table.id)) {
      for (Value const& value : row) {
        ASSERT_TRUE(value.kind != Cell::Kind::kText || isUtf8(value.text))
            << table.name << ": " << value.text;
      }
    }
  }
}

TEST(EscolaSchool, ManyNamesHaveAccentsAndSomeAreCompound) {
  auto const names = tiny(TableId::kStudents, "nome");
  auto const accented = std::count_if(names.begin(), names.end(), [](Value const& name) {
    return std::any_of(name.text.begin(), name.text.end(),
                       [](char c) { return static_cast<signed char>(c) < 0; });
  });
  EXPECT_GT(accented * 3, static_cast<std::ptrdiff_t>(names.size()));
  EXPECT_TRUE(std::any_of(names.begin(), names.end(), [](Value const& name) {
    return name.text.starts_with("Maria ") || name.text.starts_with("João ") ||
           name.text.starts_with("Ana ");
  }));
}

TEST(EscolaSchool, ColumnsThatLifeLeavesEmptyHaveNullsAndValues) {
  for (auto const& [table, name] : {std::pair{TableId::kStudents, "email"},
                                    {TableId::kStudents, "foto"},
                                    {TableId::kStudents, "id_responsavel"},
                                    {TableId::kStudents, "renda_familiar"},
                                    {TableId::kGrades, "nota"},
                                    {TableId::kGrades, "recuperacao"},
                                    {TableId::kEnrolments, "data_saida"},
                                    {TableId::kEnrolments, "media_final"},
                                    {TableId::kInvoices, "desconto"},
                                    {TableId::kPayments, "encargos"},
                                    {TableId::kAttendance, "faltas"},
                                    {TableId::kStaff, "id_unidade"},
                                    {TableId::kSubjects, "id_unidade"},
                                    {TableId::kEvents, "id_unidade"},
                                    {TableId::kCourses, "id_unidadematriz"},
                                    {TableId::kConfiguration, "id_unidade"}}) {
    auto const values = tiny(table, name);
    auto const nulls = std::count_if(values.begin(), values.end(),
                                     [](Value const& value) { return value.isNull(); });
    EXPECT_GT(nulls, 0) << name;
    EXPECT_LT(nulls, static_cast<std::ptrdiff_t>(values.size())) << name;
  }
}

TEST(EscolaSchool, MarksLieBetweenZeroAndTenInHalfSteps) {
  std::int64_t sum = 0;
  std::int64_t count = 0;
  for (Value const& mark : tiny(TableId::kGrades, "nota")) {
    if (!mark.isNull()) {
      EXPECT_GE(mark.number, 0);
      EXPECT_LE(mark.number, 1000);
      EXPECT_EQ(mark.number % 50, 0);
      sum += mark.number;
      ++count;
    }
  }
  EXPECT_GT(sum / count, 600);
  EXPECT_LT(sum / count, 850);
}

TEST(EscolaSchool, OnlyAMarkBelowSixHasASecondTry) {
  std::size_t const mark = columnIndex(TableId::kGrades, "nota");
  for (Row const& row : tinySchool().of(TableId::kGrades)) {
    if (!row[mark + 1].isNull()) {
      EXPECT_LT(row[mark].number, 600);
      EXPECT_GT(row[mark + 1].number, row[mark].number);
    }
  }
}

TEST(EscolaSchool, ThisYearsLastBimesterHasNoMarksYet) {
  auto const classYears = tiny(TableId::kClasses, "ano");
  auto const classes = tiny(TableId::kEnrolments, "id_turma");
  std::size_t seen = 0;
  for (Row const& row : tinySchool().of(TableId::kGrades)) {
    auto const enrolment =
        static_cast<std::size_t>(row[columnIndex(TableId::kGrades, "id_matricula")].number - 1);
    bool const thisYear =
        classYears[static_cast<std::size_t>(classes[enrolment].number - 1)].number == 2024;
    if (thisYear && row[columnIndex(TableId::kGrades, "bimestre")].number == 4) {
      ++seen;
      EXPECT_TRUE(row[columnIndex(TableId::kGrades, "nota")].isNull());
      EXPECT_TRUE(row[columnIndex(TableId::kGrades, "lancada_em")].isNull());
    }
  }
  EXPECT_GT(seen, 0U);
}

TEST(EscolaSchool, PaymentsAddUpToWhatTheInvoiceSays) {
  std::map<std::int64_t, std::pair<std::int64_t, std::int64_t>> paid;  // invoice: received, charges
  for (Row const& row : tinySchool().of(TableId::kPayments)) {
    auto& [received, charges] = paid[row[columnIndex(TableId::kPayments, "id_fatura")].number];
    received += row[columnIndex(TableId::kPayments, "valor")].number;
    charges += row[columnIndex(TableId::kPayments, "encargos")].number;
  }
  for (Row const& row : tinySchool().of(TableId::kInvoices)) {
    auto const [received, charges] = paid[row[0].number];
    std::int64_t const net = row[columnIndex(TableId::kInvoices, "valor")].number -
                             row[columnIndex(TableId::kInvoices, "desconto")].number;
    std::string const& situation = row[columnIndex(TableId::kInvoices, "situacao")].text;
    EXPECT_EQ(row[columnIndex(TableId::kInvoices, "valor_pago")].number, received);
    if (situation == "paga") {
      EXPECT_EQ(received - charges, net);
    } else if (situation == "parcial") {
      EXPECT_GT(received, 0);
      EXPECT_LT(received - charges, net);
    } else {
      EXPECT_EQ(received, 0) << situation;
    }
  }
}

TEST(EscolaSchool, InvoicesStandInEverySituation) {
  std::set<std::string> situations;
  for (Value const& value : tiny(TableId::kInvoices, "situacao")) {
    situations.insert(value.text);
  }
  EXPECT_EQ(situations,
            (std::set<std::string>{"aberta", "cancelada", "isenta", "paga", "parcial", "vencida"}));
}

TEST(EscolaSchool, NothingIsPaidOrIssuedAfterTheDayOfTheDatabase) {
  std::int64_t const end =
      escola::Moment(escola::Settings().today + std::chrono::days(1)).time_since_epoch().count();
  for (Value const& value : tiny(TableId::kPayments, "pago_em")) {
    EXPECT_LT(value.number, end);
  }
  for (Value const& value : tiny(TableId::kInvoices, "emitida_em")) {
    EXPECT_LT(value.number, end);
  }
}

TEST(EscolaSchool, CpfsAreUnique) {
  std::set<std::string> seen;
  for (TableId const table : {TableId::kStudents, TableId::kGuardians, TableId::kStaff}) {
    for (Value const& value : tiny(table, "cpf")) {
      EXPECT_TRUE(value.isNull() || seen.insert(value.text).second) << value.text;
    }
  }
}

TEST(EscolaSchool, TheUsersToTryAreThere) {
  std::map<std::string, Row> users;
  for (Row const& row : tinySchool().of(TableId::kUsers)) {
    users[row[1].text] = row;
  }
  auto const flag = [&users](char const* login, char const* name) {
    return users.at(login)[columnIndex(TableId::kUsers, name)].number;
  };
  EXPECT_EQ(flag("rosangela", "trabalha_por_unidades"), 1);
  EXPECT_EQ(flag("admin", "trabalha_por_unidades"), 0);
  EXPECT_EQ(flag("lucas", "aluno"), 1);
  EXPECT_EQ(flag("sebastiao", "ativo"), 0);
  EXPECT_TRUE(users.at("visitante")[columnIndex(TableId::kUsers, "id_unidadepadrao")].isNull());
}

TEST(EscolaSchool, TheStudentUserIsAStudentOfHisUnit) {
  for (Row const& row : tinySchool().of(TableId::kStudents)) {
    if (!row[columnIndex(TableId::kStudents, "id_usuario")].isNull()) {
      EXPECT_EQ(row[columnIndex(TableId::kStudents, "id_usuario")].number, 5);
      EXPECT_EQ(row[columnIndex(TableId::kStudents, "id_unidade")].number, 2);
      EXPECT_EQ(row[columnIndex(TableId::kStudents, "nome")].text, "Lucas Conceição de Sá");
      return;
    }
  }
  FAIL() << "no student is a user";
}

}  // namespace
