#include "escola/generator/network_rows.h"

#include <array>
#include <optional>
#include <string>

#include "escola/generator/catalog.h"
#include "escola/generator/people.h"
#include "escola/generator/random.h"

namespace escola {

namespace {

std::optional<int> orNull(int id) {
  return id == 0 ? std::nullopt : std::optional<int>(id);
}

std::optional<std::string_view> orNull(std::string_view text) {
  return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

void writeUnits(RowSink& sink) {
  for (Unit const& unit : units()) {
    std::string const number = std::to_string(unit.id);
    sink.row(TableId::kUnits,
             {unit.id, unit.name, unit.city, unit.state, unit.headOffice,
              "(" + std::string(unit.areaCode) + ") 3000-000" + number,
              "unidade" + number + "@rede.example",
              unit.id == 5 ? kNull : Cell("Avenida Brasil, " + number + "00"), unit.weight * 60,
              dayOf(1980 + unit.id * 4, 2, 10 + unit.id), unitToken(unit.id)});
  }
}

void writeUsers(RowSink& sink) {
  for (User const& user : users()) {
    sink.row(TableId::kUsers,
             {user.id, user.login, user.name, orNull(user.passwordHash), orNull(user.unit),
              user.worksByUnits, user.student, user.active,
              Moment(dayOf(2015, 1, 4 + user.id)) + std::chrono::minutes(525 + user.id)});
    for (int const unit : user.units) {
      sink.row(TableId::kUserUnits, {user.id, unit});
    }
    for (std::string_view const library : user.libraries) {
      sink.row(TableId::kUserLibraries, {user.id, library});
    }
  }
}

void writeConfiguration(RowSink& sink, SchoolCalendar const& calendar) {
  std::string const begin = std::to_string(calendar.firstYear()) + "-02-01";
  std::string const later = std::to_string(calendar.firstYear() + 2) + "-02-01";
  sink.row(TableId::kConfiguration,
           {1, "mox_genericos", "dataBaseUtilizacao", std::nullopt, begin});
  sink.row(TableId::kConfiguration, {2, "mox_genericos", "dataBaseUtilizacao", 5, later});
  sink.row(TableId::kConfiguration, {3, "escola", "mediaAprovacao", std::nullopt, "6.0"});
  sink.row(TableId::kConfiguration, {4, "escola", "mediaAprovacao", 6, "7.0"});
  sink.row(TableId::kConfiguration, {5, "escola", "nomeRede", 1, "Rede Jacarandá de Ensino"});
  sink.row(TableId::kConfiguration, {6, "escola", "nomeRede", 6, "Instituto Pedra Branca"});
  sink.row(TableId::kConfiguration, {7, "escola", "avisoBoletim", std::nullopt, std::nullopt});
}

void writePanels(RowSink& sink) {
  sink.row(TableId::kPanels, {1, "Direção", 1});
  sink.row(TableId::kPanels, {2, "Financeiro", 1});
  sink.row(TableId::kPanels, {3, "Painel ainda sem indicadores", 1});
  sink.row(TableId::kPanels, {4, "Direção", 6});
  sink.row(TableId::kPanelIndicators, {1, 1, "Matrículas por unidade", 2});
  sink.row(TableId::kPanelIndicators, {2, 1, "Média das notas", 1});
  sink.row(TableId::kPanelIndicators, {3, 1, "Faltas por mês", 3});
  sink.row(TableId::kPanelIndicators, {4, 2, "Mensalidades recebidas", 1});
  sink.row(TableId::kPanelIndicators, {5, 2, "Mensalidades vencidas", 2});
  sink.row(TableId::kPanelIndicators, {6, 4, "Matrículas por unidade", 1});
}

void writeFavourites(RowSink& sink) {
  sink.row(TableId::kFavouriteSections, {1, "Dia a dia", 1});
  sink.row(TableId::kFavouriteSections, {2, "Fim de mês", 1});
  sink.row(TableId::kFavouriteSections, {3, "Minhas turmas", 3});
  sink.row(TableId::kFavourites,
           {1, 1, "Alunos", "escolaPesquisaAlunos", "aluno.svg", true, false});
  sink.row(TableId::kFavourites,
           {2, 1, "Turmas", "escolaPesquisaTurmas", std::nullopt, false, false});
  sink.row(TableId::kFavourites,
           {3, 2, "Faturas em aberto", "escolaPesquisaFaturas", "fatura.svg", false, true});
  sink.row(TableId::kFavourites,
           {4, 3, "Notas da turma", "escolaPesquisaNotas", "nota.svg", true, true});
}

void writeAreas(RowSink& sink) {
  sink.row(TableId::kUserAreas, {1, "gestor", "Gestão escolar"});
  sink.row(TableId::kUserAreas, {2, "secretaria", "Secretaria"});
  sink.row(TableId::kUserAreas, {3, "docencia", "Docência"});
  sink.row(TableId::kUserAreaMembers, {1, 1});
  sink.row(TableId::kUserAreaMembers, {1, 2});
  sink.row(TableId::kUserAreaMembers, {1, 7});
  sink.row(TableId::kUserAreaMembers, {2, 4});
  sink.row(TableId::kUserAreaMembers, {3, 3});
  sink.row(TableId::kRecommendedPlugins, {1, "escolaPesquisaAlunos", "aluno.svg", 2});
  sink.row(TableId::kRecommendedPlugins, {2, "escolaPainelDirecao", "painel.svg", 1});
  sink.row(TableId::kRecommendedPlugins, {3, "moxPesqAlunoTurma", std::nullopt, 3});
  sink.row(TableId::kRecommendedPlugins, {4, "escolaCalendario", "calendario.svg", std::nullopt});
  sink.row(TableId::kClassPerformance, {1, 5, 2, dayOf(2099, 12, 31)});
  sink.row(TableId::kClassPerformance, {2, 3, 3, dayOf(2020, 12, 31)});
  sink.row(TableId::kClassPerformance, {3, std::nullopt, 7, std::nullopt});
}

void writeCourses(RowSink& sink) {
  for (Course const& course : courses()) {
    sink.row(TableId::kCourses, {course.id, course.name, course.level, course.years,
                                 course.monthlyFee, orNull(course.headOffice)});
  }
  for (Subject const& subject : subjects()) {
    std::string const content = unitToken(subject.unit) + " Conteúdos de " +
                                std::string(subject.name) + " segundo o projeto pedagógico.";
    sink.row(TableId::kSubjects, {subject.id, subject.code, subject.name, fieldName(subject.field),
                                  subject.weeklyLessons, orNull(subject.unit),
                                  subject.id % 4 == 0 ? kNull : Cell(content)});
  }
}

struct Holiday {
  int month;
  int day;
  std::string_view name;
};

constexpr auto kHolidays = std::to_array<Holiday>({{1, 1, "Confraternização Universal"},
                                                   {4, 21, "Tiradentes"},
                                                   {5, 1, "Dia do Trabalho"},
                                                   {9, 7, "Independência do Brasil"},
                                                   {10, 12, "Nossa Senhora Aparecida"},
                                                   {11, 2, "Finados"},
                                                   {11, 15, "Proclamação da República"},
                                                   {12, 25, "Natal"}});

void writeUnitEvents(Context& context, int year, int& id) {
  for (Unit const& unit : units()) {
    Random random(context.settings.seed, Purpose::kEvent, static_cast<std::uint64_t>(unit.id),
                  static_cast<std::uint64_t>(year));
    std::string const mark = unitToken(unit.id) + " ";
    context.sink.row(TableId::kEvents, {id++, unit.id, dayOf(year, 3, random.between(8, 26)),
                                        mark + "Reunião de pais e mestres", "reunião", true});
    context.sink.row(TableId::kEvents, {id++, unit.id, dayOf(year, 6, random.between(10, 28)),
                                        mark + "Festa junina", "festa", false});
    context.sink.row(TableId::kEvents,
                     {id++, unit.id, dayOf(year, 8, random.between(10, 28)),
                      mark + "Aniversário de " + std::string(unit.city), "feriado", false});
    context.sink.row(TableId::kEvents, {id++, unit.id, dayOf(year, 10, random.between(13, 30)),
                                        mark + "Feira de Ciências", "evento", true});
  }
}

void writeEvents(Context& context) {
  int id = 1;
  for (int year = context.calendar.firstYear(); year <= context.calendar.lastYear(); ++year) {
    for (Holiday const& holiday : kHolidays) {
      context.sink.row(TableId::kEvents,
                       {id++, std::nullopt, dayOf(year, holiday.month, holiday.day),
                        unitToken(0) + " " + std::string(holiday.name), "feriado", false});
    }
    writeUnitEvents(context, year, id);
  }
}

/// The user, other than the student, who is this employee; 0 for nobody.
int userOfStaff(int staff) {
  if (staff == unitStaffId(1, 0)) {
    return 1;
  }
  if (staff == unitStaffId(3, 0)) {
    return 2;
  }
  if (staff == unitStaffId(3, kManagersPerUnit)) {
    return 3;
  }
  return staff == unitStaffId(6, 0) ? 7 : 0;
}

std::string roleOf(int place) {
  static constexpr std::array<std::string_view, kManagersPerUnit> kManagers{
      "Direção", "Secretaria escolar", "Coordenação pedagógica"};
  if (place < kManagersPerUnit) {
    return std::string(kManagers[static_cast<std::size_t>(place)]);
  }
  auto const field = static_cast<Field>((place - kManagersPerUnit) / kTeachersPerField);
  return "Docência: " + std::string(fieldName(field));
}

Day openingOf(Context const& context) {
  return dayOf(context.calendar.firstYear(), 1, 10);
}

void writeUnitStaff(Context& context, Unit const& unit) {
  for (int place = 0; place < kStaffPerUnit; ++place) {
    int const user = userOfStaff(unitStaffId(unit.id, place));
    Employee employee{unit.id,
                      unit.headOffice,
                      user,
                      "",
                      roleOf(place),
                      {place == 0 ? 980000 : 520000},
                      openingOf(context),
                      std::nullopt};
    if (user != 0) {
      employee.name = users()[static_cast<std::size_t>(user - 1)].name;
    }
    writeEmployee(context, employee);
  }
}

void writeStaff(Context& context) {
  for (Unit const& unit : units()) {
    writeUnitStaff(context, unit);
  }
  Day const opening = openingOf(context);
  writeEmployee(context, {0, 1, 0, "", "Nutrição", {610000}, opening, std::nullopt});
  writeEmployee(context, {0, 1, 0, "", "Psicologia escolar", {640000}, opening, std::nullopt});
  writeEmployee(context, {0, 1, 0, "", "Tesouraria", {720000}, opening, std::nullopt});
  writeEmployee(context, {0, 6, 0, "", "Nutrição", {630000}, opening, std::nullopt});
}

}  // namespace

int writeEmployee(Context& context, Employee const& employee) {
  int const id = ++context.staff;
  Random random(context.settings.seed, Purpose::kStaff, static_cast<std::uint64_t>(id));
  std::string const drawn = fullName(random, random.chance(600));
  std::string_view const name = employee.name.empty() ? std::string_view(drawn) : employee.name;
  int const place = employee.unit == 0 ? employee.headOffice : employee.unit;
  std::string_view const areaCode = units()[static_cast<std::size_t>(place - 1)].areaCode;
  Day const hired = employee.hiredBy - std::chrono::days(random.below(3600));
  std::int64_t const salary = employee.salary.value * random.between(80, 135) / 100;
  context.sink.row(
      TableId::kStaff,
      {id, orNull(employee.unit), employee.headOffice, orNull(employee.user), name,
       cpf(9'000'000 + id), employee.role,
       random.chance(100) ? kNull : Cell(email(name, id, "rede")),
       random.chance(150) ? kNull : Cell(phone(random, areaCode)), hired, employee.left,
       Hundredths{salary}, random.between(2, 10) * 4,
       unitToken(employee.unit) + (random.chance(150) ? " Licença prêmio a gozar." : "")});
  return id;
}

void writeNetworkRows(Context& context) {
  writeUnits(context.sink);
  writeUsers(context.sink);
  writeConfiguration(context.sink, context.calendar);
  writePanels(context.sink);
  writeFavourites(context.sink);
  writeAreas(context.sink);
  writeCourses(context.sink);
  writeEvents(context);
  writeStaff(context);
}

}  // namespace escola
