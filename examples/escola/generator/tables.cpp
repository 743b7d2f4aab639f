#include "escola/generator/tables.h"

#include <array>

namespace escola {

namespace {

constexpr ColumnType kInt = ColumnType::kInt;
constexpr ColumnType kNumber = ColumnType::kNumber;
constexpr ColumnType kDay = ColumnType::kDay;
constexpr ColumnType kMoment = ColumnType::kMoment;
constexpr ColumnType kText = ColumnType::kText;
constexpr ColumnType kBytes = ColumnType::kBytes;

constexpr auto kUnitsColumns = std::to_array<Column>({{"id", kInt},
                                                      {"nome", kText},
                                                      {"cidade", kText},
                                                      {"uf", kText},
                                                      {"id_unidadematriz", kInt},
                                                      {"telefone", kText},
                                                      {"email", kText},
                                                      {"endereco", kText},
                                                      {"capacidade", kInt},
                                                      {"data_abertura", kDay},
                                                      {"observacao", kText}});

constexpr auto kUsersColumns = std::to_array<Column>({{"id", kInt},
                                                      {"login", kText},
                                                      {"nome", kText},
                                                      {"senha", kText},
                                                      {"id_unidadepadrao", kInt},
                                                      {"trabalha_por_unidades", kInt},
                                                      {"aluno", kInt},
                                                      {"ativo", kInt},
                                                      {"criado_em", kMoment}});

constexpr auto kUserUnitsColumns =
    std::to_array<Column>({{"id_usuario", kInt}, {"id_unidade", kInt}});

constexpr auto kUserLibrariesColumns =
    std::to_array<Column>({{"id_usuario", kInt}, {"biblioteca", kText}});

constexpr auto kConfigurationColumns = std::to_array<Column>(
    {{"id", kInt}, {"modulo", kText}, {"chave", kText}, {"id_unidade", kInt}, {"valor", kText}});

constexpr auto kPanelsColumns =
    std::to_array<Column>({{"id", kInt}, {"descricao", kText}, {"id_unidadenegociomatriz", kInt}});

constexpr auto kPanelIndicatorsColumns = std::to_array<Column>(
    {{"id", kInt}, {"id_painelindicador", kInt}, {"dataprocessor", kText}, {"ordem", kInt}});

constexpr auto kFavouriteSectionsColumns =
    std::to_array<Column>({{"id", kInt}, {"descricao", kText}, {"id_usuario", kInt}});

constexpr auto kFavouritesColumns = std::to_array<Column>({{"id", kInt},
                                                           {"id_secaofavorito", kInt},
                                                           {"descricao", kText},
                                                           {"plugin", kText},
                                                           {"icone", kText},
                                                           {"telainicial", kInt},
                                                           {"abrir", kInt}});

constexpr auto kUserAreasColumns =
    std::to_array<Column>({{"id", kInt}, {"codigo", kText}, {"descricao", kText}});

constexpr auto kUserAreaMembersColumns =
    std::to_array<Column>({{"id_areausuario", kInt}, {"id_usuario", kInt}});

constexpr auto kRecommendedPluginsColumns = std::to_array<Column>(
    {{"id", kInt}, {"plugin", kText}, {"icone", kText}, {"id_areausuario", kInt}});

constexpr auto kClassPerformanceColumns = std::to_array<Column>(
    {{"id", kInt}, {"id_usuario", kInt}, {"id_unidade", kInt}, {"datalimiteacesso", kDay}});

constexpr auto kCoursesColumns = std::to_array<Column>({{"id", kInt},
                                                        {"nome", kText},
                                                        {"nivel", kText},
                                                        {"duracao_anos", kInt},
                                                        {"mensalidade", kNumber},
                                                        {"id_unidadematriz", kInt}});

constexpr auto kSubjectsColumns = std::to_array<Column>({{"id", kInt},
                                                         {"sigla", kText},
                                                         {"nome", kText},
                                                         {"area", kText},
                                                         {"aulas_semanais", kInt},
                                                         {"id_unidade", kInt},
                                                         {"ementa", kText}});

constexpr auto kEventsColumns = std::to_array<Column>({{"id", kInt},
                                                       {"id_unidade", kInt},
                                                       {"data", kDay},
                                                       {"descricao", kText},
                                                       {"tipo", kText},
                                                       {"dia_letivo", kInt}});

constexpr auto kStaffColumns = std::to_array<Column>({{"id", kInt},
                                                      {"id_unidade", kInt},
                                                      {"id_unidadematriz", kInt},
                                                      {"id_usuario", kInt},
                                                      {"nome", kText},
                                                      {"cpf", kText},
                                                      {"cargo", kText},
                                                      {"email", kText},
                                                      {"telefone", kText},
                                                      {"data_admissao", kDay},
                                                      {"data_demissao", kDay},
                                                      {"salario", kNumber},
                                                      {"horas_semanais", kInt},
                                                      {"observacao", kText}});

constexpr auto kClassesColumns = std::to_array<Column>({{"id", kInt},
                                                        {"id_unidade", kInt},
                                                        {"id_curso", kInt},
                                                        {"ano", kInt},
                                                        {"serie", kInt},
                                                        {"turno", kText},
                                                        {"nome", kText},
                                                        {"id_professorresponsavel", kInt},
                                                        {"sala", kText},
                                                        {"capacidade", kInt},
                                                        {"data_inicio", kDay},
                                                        {"data_fim", kDay},
                                                        {"mensalidade", kNumber},
                                                        {"observacao", kText}});

constexpr auto kClassSubjectsColumns =
    std::to_array<Column>({{"id_turma", kInt}, {"id_disciplina", kInt}, {"id_professor", kInt}});

constexpr auto kGuardiansColumns = std::to_array<Column>({{"id", kInt},
                                                          {"nome", kText},
                                                          {"cpf", kText},
                                                          {"parentesco", kText},
                                                          {"telefone", kText},
                                                          {"email", kText},
                                                          {"profissao", kText}});

constexpr auto kStudentsColumns = std::to_array<Column>({{"id", kInt},
                                                         {"id_unidade", kInt},
                                                         {"id_responsavel", kInt},
                                                         {"id_usuario", kInt},
                                                         {"registro", kText},
                                                         {"nome", kText},
                                                         {"nome_social", kText},
                                                         {"cpf", kText},
                                                         {"data_nascimento", kDay},
                                                         {"sexo", kText},
                                                         {"email", kText},
                                                         {"telefone", kText},
                                                         {"endereco", kText},
                                                         {"bairro", kText},
                                                         {"cidade", kText},
                                                         {"uf", kText},
                                                         {"cep", kText},
                                                         {"renda_familiar", kNumber},
                                                         {"data_cadastro", kMoment},
                                                         {"foto", kBytes},
                                                         {"observacao", kText}});

constexpr auto kEnrolmentsColumns = std::to_array<Column>({{"id", kInt},
                                                           {"id_unidade", kInt},
                                                           {"id_aluno", kInt},
                                                           {"id_turma", kInt},
                                                           {"numero", kInt},
                                                           {"data_matricula", kDay},
                                                           {"data_saida", kDay},
                                                           {"situacao", kText},
                                                           {"bolsa_percentual", kInt},
                                                           {"media_final", kNumber},
                                                           {"observacao", kText}});

constexpr auto kGradesColumns = std::to_array<Column>({{"id", kInt},
                                                       {"id_unidade", kInt},
                                                       {"id_matricula", kInt},
                                                       {"id_disciplina", kInt},
                                                       {"bimestre", kInt},
                                                       {"nota", kNumber},
                                                       {"recuperacao", kNumber},
                                                       {"faltas", kInt},
                                                       {"lancada_em", kDay},
                                                       {"diario", kText}});

constexpr auto kAttendanceColumns = std::to_array<Column>({{"id", kInt},
                                                           {"id_unidade", kInt},
                                                           {"id_matricula", kInt},
                                                           {"mes", kDay},
                                                           {"dias_letivos", kInt},
                                                           {"faltas", kInt},
                                                           {"justificadas", kInt}});

constexpr auto kInvoicesColumns = std::to_array<Column>({{"id", kInt},
                                                         {"id_unidade", kInt},
                                                         {"id_matricula", kInt},
                                                         {"competencia", kDay},
                                                         {"vencimento", kDay},
                                                         {"valor", kNumber},
                                                         {"desconto", kNumber},
                                                         {"valor_pago", kNumber},
                                                         {"situacao", kText},
                                                         {"emitida_em", kMoment},
                                                         {"descricao", kText}});

constexpr auto kPaymentsColumns = std::to_array<Column>({{"id", kInt},
                                                         {"id_unidade", kInt},
                                                         {"id_fatura", kInt},
                                                         {"pago_em", kMoment},
                                                         {"valor", kNumber},
                                                         {"encargos", kNumber},
                                                         {"forma", kText},
                                                         {"documento", kText}});

constexpr auto kTables = std::to_array<Table>({
    {TableId::kUnits, "ambiente_unidades", 1, kUnitsColumns},
    {TableId::kUsers, "ambiente_usuarios", 1, kUsersColumns},
    {TableId::kUserUnits, "ambiente_usuariosunidades", 2, kUserUnitsColumns},
    {TableId::kUserLibraries, "ambiente_usuariosbibliotecas", 2, kUserLibrariesColumns},
    {TableId::kConfiguration, "ambiente_configuracoes", 1, kConfigurationColumns},
    {TableId::kPanels, "ambiente_paineisindicador", 1, kPanelsColumns},
    {TableId::kPanelIndicators, "ambiente_indicadorespainelindicador", 1, kPanelIndicatorsColumns},
    {TableId::kFavouriteSections, "ambiente_secoesfavorito", 1, kFavouriteSectionsColumns},
    {TableId::kFavourites, "ambiente_favoritos", 1, kFavouritesColumns},
    {TableId::kUserAreas, "genericos_areasusuario", 1, kUserAreasColumns},
    {TableId::kUserAreaMembers, "genericos_areasusuariousuario", 2, kUserAreaMembersColumns},
    {TableId::kRecommendedPlugins, "ambiente_pluginsrecomendado", 1, kRecommendedPluginsColumns},
    {TableId::kClassPerformance, "desempenho_alunosturma", 1, kClassPerformanceColumns},
    {TableId::kCourses, "escola_cursos", 1, kCoursesColumns},
    {TableId::kSubjects, "escola_disciplinas", 1, kSubjectsColumns},
    {TableId::kEvents, "escola_eventos", 1, kEventsColumns},
    {TableId::kStaff, "escola_funcionarios", 1, kStaffColumns},
    {TableId::kClasses, "escola_turmas", 1, kClassesColumns},
    {TableId::kClassSubjects, "escola_turmasdisciplinas", 2, kClassSubjectsColumns},
    {TableId::kGuardians, "escola_responsaveis", 1, kGuardiansColumns},
    {TableId::kStudents, "escola_alunos", 1, kStudentsColumns},
    {TableId::kEnrolments, "escola_matriculas", 1, kEnrolmentsColumns},
    {TableId::kGrades, "escola_notas", 1, kGradesColumns},
    {TableId::kAttendance, "escola_frequencias", 1, kAttendanceColumns},
    {TableId::kInvoices, "escola_faturas", 1, kInvoicesColumns},
    {TableId::kPayments, "escola_pagamentos", 1, kPaymentsColumns},
});

}  // namespace

std::span<Table const> allTables() {
  return kTables;
}

}  // namespace escola
