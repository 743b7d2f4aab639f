#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <string>

#include "escola/generator/example_database.h"
#include "support/databases.h"

// The example school is the same on every database, cell by cell.

namespace {

/// Tests that only look at the tiny school. It is made once for each database, as a server takes
/// seconds for it.
class EscolaOnEveryDatabase : public ::testing::TestWithParam<mox_test::DatabaseKind> {
 protected:
  static void TearDownTestSuite() { schools().clear(); }

  static mox_test::TestDatabase& school() {
    auto& place = schools()[GetParam()];
    if (!place) {
      place = std::make_unique<mox_test::TestDatabase>(GetParam());
      escola::buildExample(place->connection(),
                           {place->url(), "", escola::parseScale("tiny"), {}, false});
    }
    return *place;
  }

 private:
  static std::map<mox_test::DatabaseKind, std::unique_ptr<mox_test::TestDatabase>>& schools() {
    static std::map<mox_test::DatabaseKind, std::unique_ptr<mox_test::TestDatabase>> all;
    return all;
  }
};

class EscolaAnew : public mox_test::OnEveryDatabase {
 protected:
  void build(int cohorts, bool replace) {
    escola::buildExample(db.connection(), {db.url(), "", {cohorts, 0}, {}, replace});
  }
};

TEST_P(EscolaOnEveryDatabase, HoldsWhatWasGenerated) {
  escola::ChecksumSink generated;
  escola::generate({}, escola::parseScale("tiny"), generated);
  EXPECT_EQ(escola::checksumReport(escola::readChecksums(school().connection())),
            escola::checksumReport(generated));
}

TEST_P(EscolaOnEveryDatabase, HasNoRowThatRefersToNothing) {
  struct Reference {
    char const* table;
    char const* column;
    char const* target;
  };
  static constexpr auto kReferences =
      std::to_array<Reference>({{"ambiente_usuariosunidades", "id_unidade", "ambiente_unidades"},
                                {"escola_funcionarios", "id_unidade", "ambiente_unidades"},
                                {"escola_turmas", "id_professorresponsavel", "escola_funcionarios"},
                                {"escola_turmasdisciplinas", "id_professor", "escola_funcionarios"},
                                {"escola_alunos", "id_responsavel", "escola_responsaveis"},
                                {"escola_matriculas", "id_aluno", "escola_alunos"},
                                {"escola_notas", "id_matricula", "escola_matriculas"},
                                {"escola_notas", "id_disciplina", "escola_disciplinas"},
                                {"escola_frequencias", "id_matricula", "escola_matriculas"},
                                {"escola_faturas", "id_matricula", "escola_matriculas"},
                                {"escola_pagamentos", "id_fatura", "escola_faturas"}});
  for (auto const& [table, column, target] : kReferences) {
    std::string const from =
        std::string(table) + " r left join " + target + " t on t.id=r." + column;
    EXPECT_EQ(school().value("select count(*) from " + from + " where t.id is null and r." +
                             column + " is not null"),
              "0")
        << table << "." << column;
  }
}

TEST_P(EscolaOnEveryDatabase, RefusesARowThatRefersToNothing) {
  if (!school().isMariadb()) {
    school().run("pragma foreign_keys=on");
  }
  EXPECT_TRUE(mox_test::failureOf([] {
    school().run("insert into ambiente_usuariosunidades (id_usuario,id_unidade) values (1,99)");
  }));
}

TEST_P(EscolaOnEveryDatabase, KeepsAccentsAsTheyAre) {
  EXPECT_EQ(school().value("select nome from ambiente_usuarios where id=5"),
            "Lucas Conceição de Sá");
  EXPECT_EQ(school().value("select nome from escola_alunos where id_usuario=5"),
            "Lucas Conceição de Sá");
  EXPECT_EQ(school().value("select count(*) from ambiente_unidades where nome like '%– Matriz'"),
            "1");
}

TEST_P(EscolaOnEveryDatabase, AUnitsOwnSettingComesBeforeTheGeneralOne) {
  std::string const call =
      "select ambiente_buscadadostringconfiguracao('mox_genericos','dataBaseUtilizacao',";
  EXPECT_EQ(school().value(call + "3)"), "2015-02-01");
  EXPECT_EQ(school().value(call + "5)"), "2017-02-01");
  EXPECT_EQ(school().value("select ambiente_buscadadostringconfiguracao(modulo,chave,6) "
                           "from ambiente_configuracoes where id=3"),
            "7.0");
  EXPECT_EQ(school().value("select ambiente_buscadadostringconfiguracao('escola','semValor',3)"),
            "NULL");
}

TEST_P(EscolaOnEveryDatabase, MoneyAddsUpInTheDatabaseToo) {
  EXPECT_EQ(school().value("select count(*) from escola_faturas f where abs(f.valor_pago - "
                           "(select coalesce(sum(p.valor),0) from escola_pagamentos p where "
                           "p.id_fatura=f.id)) > 0.001"),
            "0");
}

TEST_P(EscolaAnew, RefusesToReplaceTablesUnlessToldTo) {
  build(1, false);
  EXPECT_TRUE(mox_test::failureOf([this] { build(1, false); }));
  build(2, true);
  EXPECT_NE(db.value("select count(*) from escola_alunos where id_unidade=2"), "0");
}

MOX_ON_EVERY_DATABASE(EscolaOnEveryDatabase);
MOX_ON_EVERY_DATABASE(EscolaAnew);

}  // namespace
