#include <gtest/gtest.h>

#include <array>
#include <string>

#include "escola/generator/example_database.h"
#include "support/databases.h"

// The example school is the same on every database, cell by cell.

namespace {

class EscolaOnEveryDatabase : public mox_test::OnEveryDatabase {
 protected:
  escola::BuildOptions options(escola::Scale const& scale, bool replace = false) const {
    return {db.url(), "", scale, {}, replace};
  }

  void build(escola::Scale const& scale) { escola::buildExample(db.connection(), options(scale)); }
};

TEST_P(EscolaOnEveryDatabase, HoldsWhatWasGenerated) {
  build(escola::parseScale("tiny"));
  escola::ChecksumSink generated;
  escola::generate({}, escola::parseScale("tiny"), generated);
  EXPECT_EQ(escola::checksumReport(escola::readChecksums(db.connection())),
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
  build({7, 0});
  for (auto const& [table, column, target] : kReferences) {
    std::string const from =
        std::string(table) + " r left join " + target + " t on t.id=r." + column;
    EXPECT_EQ(db.value("select count(*) from " + from + " where t.id is null and r." + column +
                       " is not null"),
              "0")
        << table << "." << column;
  }
}

TEST_P(EscolaOnEveryDatabase, RefusesARowThatRefersToNothing) {
  if (!db.isMariadb()) {
    db.run("pragma foreign_keys=on");
  }
  build({1, 0});
  EXPECT_TRUE(mox_test::failureOf([this] {
    db.run("insert into ambiente_usuariosunidades (id_usuario,id_unidade) values (1,99)");
  }));
}

TEST_P(EscolaOnEveryDatabase, KeepsAccentsAsTheyAre) {
  build({2, 0});
  EXPECT_EQ(db.value("select nome from ambiente_usuarios where id=5"), "Lucas Conceição de Sá");
  EXPECT_EQ(db.value("select nome from escola_alunos where id_usuario=5"), "Lucas Conceição de Sá");
  EXPECT_EQ(db.value("select count(*) from ambiente_unidades where nome like '%– Matriz'"), "1");
}

TEST_P(EscolaOnEveryDatabase, AUnitsOwnSettingComesBeforeTheGeneralOne) {
  build({1, 0});
  std::string const call =
      "select ambiente_buscadadostringconfiguracao('mox_genericos','dataBaseUtilizacao',";
  EXPECT_EQ(db.value(call + "3)"), "2015-02-01");
  EXPECT_EQ(db.value(call + "5)"), "2017-02-01");
  EXPECT_EQ(db.value("select ambiente_buscadadostringconfiguracao('escola','semValor',3)"), "NULL");
}

TEST_P(EscolaOnEveryDatabase, RefusesToReplaceTablesUnlessToldTo) {
  build({1, 0});
  EXPECT_TRUE(mox_test::failureOf([this] { build({1, 0}); }));
  escola::buildExample(db.connection(), options({2, 0}, true));
  EXPECT_NE(db.value("select count(*) from escola_alunos where id_unidade=2"), "0");
}

TEST_P(EscolaOnEveryDatabase, MoneyAddsUpInTheDatabaseToo) {
  build(escola::parseScale("tiny"));
  EXPECT_EQ(db.value("select count(*) from escola_faturas f where abs(f.valor_pago - "
                     "(select coalesce(sum(p.valor),0) from escola_pagamentos p where "
                     "p.id_fatura=f.id)) > 0.001"),
            "0");
}

MOX_ON_EVERY_DATABASE(EscolaOnEveryDatabase);

}  // namespace
