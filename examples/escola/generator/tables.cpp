#include "escola/generator/tables.h"

namespace escola {

namespace {

constexpr ColumnType kInt = ColumnType::kInt;
constexpr ColumnType kNumber = ColumnType::kNumber;
constexpr ColumnType kDay = ColumnType::kDay;
constexpr ColumnType kMoment = ColumnType::kMoment;
constexpr ColumnType kText = ColumnType::kText;
constexpr ColumnType kBytes = ColumnType::kBytes;

void addApplicationTables(std::vector<Table>& tables) {
  tables.insert(
      tables.end(),
      {{TableId::kUnits, "ambiente_unidades", 1,
        {{"id", kInt}, {"nome", kText}, {"cidade", kText}, {"uf", kText}, {"id_unidadematriz", kInt},
         {"telefone", kText}, {"email", kText}, {"endereco", kText}, {"capacidade", kInt},
         {"data_abertura", kDay}, {"observacao", kText}}},
       {TableId::kUsers, "ambiente_usuarios", 1,
        {{"id", kInt}, {"login", kText}, {"nome", kText}, {"senha", kText}, {"id_unidadepadrao", kInt},
         {"trabalha_por_unidades", kInt}, {"aluno", kInt}, {"ativo", kInt}, {"criado_em", kMoment}}},
       {TableId::kUserUnits, "ambiente_usuariosunidades", 2, {{"id_usuario", kInt}, {"id_unidade", kInt}}},
       {TableId::kUserLibraries, "ambiente_usuariosbibliotecas", 2,
        {{"id_usuario", kInt}, {"biblioteca", kText}}},
       {TableId::kConfiguration, "ambiente_configuracoes", 1,
        {{"id", kInt}, {"modulo", kText}, {"chave", kText}, {"id_unidade", kInt}, {"valor", kText}}},
       {TableId::kPanels, "ambiente_paineisindicador", 1,
        {{"id", kInt}, {"descricao", kText}, {"id_unidadenegociomatriz", kInt}}},
       {TableId::kPanelIndicators, "ambiente_indicadorespainelindicador", 1,
        {{"id", kInt}, {"id_painelindicador", kInt}, {"dataprocessor", kText}, {"ordem", kInt}}},
       {TableId::kFavouriteSections, "ambiente_secoesfavorito", 1,
        {{"id", kInt}, {"descricao", kText}, {"id_usuario", kInt}}},
       {TableId::kFavourites, "ambiente_favoritos", 1,
        {{"id", kInt}, {"id_secaofavorito", kInt}, {"descricao", kText}, {"plugin", kText},
         {"icone", kText}, {"telainicial", kInt}, {"abrir", kInt}}},
       {TableId::kUserAreas, "genericos_areasusuario", 1,
        {{"id", kInt}, {"codigo", kText}, {"descricao", kText}}},
       {TableId::kUserAreaMembers, "genericos_areasusuariousuario", 2,
        {{"id_areausuario", kInt}, {"id_usuario", kInt}}},
       {TableId::kRecommendedPlugins, "ambiente_pluginsrecomendado", 1,
        {{"id", kInt}, {"plugin", kText}, {"icone", kText}, {"id_areausuario", kInt}}},
       {TableId::kClassPerformance, "desempenho_alunosturma", 1,
        {{"id", kInt}, {"id_usuario", kInt}, {"id_unidade", kInt}, {"datalimiteacesso", kDay}}}});
}

void addTeachingTables(std::vector<Table>& tables) {
  tables.insert(
      tables.end(),
      {{TableId::kCourses, "escola_cursos", 1,
        {{"id", kInt}, {"nome", kText}, {"nivel", kText}, {"duracao_anos", kInt}, {"mensalidade", kNumber},
         {"id_unidadematriz", kInt}}},
       {TableId::kSubjects, "escola_disciplinas", 1,
        {{"id", kInt}, {"sigla", kText}, {"nome", kText}, {"area", kText}, {"aulas_semanais", kInt},
         {"id_unidade", kInt}, {"ementa", kText}}},
       {TableId::kEvents, "escola_eventos", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"data", kDay}, {"descricao", kText}, {"tipo", kText},
         {"dia_letivo", kInt}}},
       {TableId::kStaff, "escola_funcionarios", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_unidadematriz", kInt}, {"id_usuario", kInt},
         {"nome", kText}, {"cpf", kText}, {"cargo", kText}, {"email", kText}, {"telefone", kText},
         {"data_admissao", kDay}, {"data_demissao", kDay}, {"salario", kNumber}, {"horas_semanais", kInt},
         {"observacao", kText}}},
       {TableId::kClasses, "escola_turmas", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_curso", kInt}, {"ano", kInt}, {"serie", kInt},
         {"turno", kText}, {"nome", kText}, {"id_professorresponsavel", kInt}, {"sala", kText},
         {"capacidade", kInt}, {"data_inicio", kDay}, {"data_fim", kDay}, {"mensalidade", kNumber},
         {"observacao", kText}}},
       {TableId::kClassSubjects, "escola_turmasdisciplinas", 2,
        {{"id_turma", kInt}, {"id_disciplina", kInt}, {"id_professor", kInt}}}});
}

void addStudentTables(std::vector<Table>& tables) {
  tables.insert(
      tables.end(),
      {{TableId::kGuardians, "escola_responsaveis", 1,
        {{"id", kInt}, {"nome", kText}, {"cpf", kText}, {"parentesco", kText}, {"telefone", kText},
         {"email", kText}, {"profissao", kText}}},
       {TableId::kStudents, "escola_alunos", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_responsavel", kInt}, {"id_usuario", kInt},
         {"registro", kText}, {"nome", kText}, {"nome_social", kText}, {"cpf", kText},
         {"data_nascimento", kDay}, {"sexo", kText}, {"email", kText}, {"telefone", kText},
         {"endereco", kText}, {"bairro", kText}, {"cidade", kText}, {"uf", kText}, {"cep", kText},
         {"renda_familiar", kNumber}, {"data_cadastro", kMoment}, {"foto", kBytes}, {"observacao", kText}}},
       {TableId::kEnrolments, "escola_matriculas", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_aluno", kInt}, {"id_turma", kInt}, {"numero", kInt},
         {"data_matricula", kDay}, {"data_saida", kDay}, {"situacao", kText}, {"bolsa_percentual", kInt},
         {"media_final", kNumber}, {"observacao", kText}}},
       {TableId::kGrades, "escola_notas", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_matricula", kInt}, {"id_disciplina", kInt},
         {"bimestre", kInt}, {"nota", kNumber}, {"recuperacao", kNumber}, {"faltas", kInt},
         {"lancada_em", kDay}, {"diario", kText}}},
       {TableId::kAttendance, "escola_frequencias", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_matricula", kInt}, {"mes", kDay}, {"dias_letivos", kInt},
         {"faltas", kInt}, {"justificadas", kInt}}},
       {TableId::kInvoices, "escola_faturas", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_matricula", kInt}, {"competencia", kDay},
         {"vencimento", kDay}, {"valor", kNumber}, {"desconto", kNumber}, {"valor_pago", kNumber},
         {"situacao", kText}, {"emitida_em", kMoment}, {"descricao", kText}}},
       {TableId::kPayments, "escola_pagamentos", 1,
        {{"id", kInt}, {"id_unidade", kInt}, {"id_fatura", kInt}, {"pago_em", kMoment}, {"valor", kNumber},
         {"encargos", kNumber}, {"forma", kText}, {"documento", kText}}}});
}

std::vector<Table> makeTables() {
  std::vector<Table> tables;
  addApplicationTables(tables);
  addTeachingTables(tables);
  addStudentTables(tables);
  return tables;
}

}  // namespace

std::span<Table const> allTables() {
  static std::vector<Table> const tables = makeTables();
  return tables;
}

}  // namespace escola
