#include "core/session/database_user_directory.h"

#include <string>

#include <gtest/gtest.h>

#include "core/database/database.h"
#include "mox/core/error.h"

using mox::core::DatabaseUserDirectory;
using mox::core::User;
using mox::core::UserUnit;

namespace {

class DatabaseUsers : public testing::Test {
 protected:
  DatabaseUsers() {
    for (auto const* const sql :
         {"create table ambiente_unidades (id int, nome varchar(80), id_unidadematriz int)",
          "create table ambiente_usuarios (id int, login varchar(40), nome varchar(80), senha "
          "varchar(200), id_unidadepadrao int, trabalha_por_unidades int, aluno int, ativo int)",
          "create table ambiente_usuariosunidades (id_usuario int, id_unidade int)",
          "create table ambiente_usuariosbibliotecas (id_usuario int, biblioteca varchar(40))",
          "insert into ambiente_unidades values (1, 'Matriz', null), (3, 'Centro', 1),"
          " (4, 'Norte', 1), (8, 'Outra', 8)",
          "insert into ambiente_usuarios values"
          " (7, 'maria', 'Maria José', '', 3, 1, 0, 1), (1, 'admin', null, '', 1, 0, 0, 1),"
          " (9, 'aluno', 'Zé', '', null, 1, 1, 1), (5, 'antigo', 'X', '', 3, 1, 0, 0)",
          "insert into ambiente_usuariosunidades values (7, 4), (7, 3), (7, 99), (9, 8)",
          "insert into ambiente_usuariosbibliotecas values (7, 'ZYNC'), (7, 'OUTRA')"}) {
      database_->execute(sql);
    }
  }

  User find(std::string const& login) const { return directory_.find(login); }

  std::string failureOf(std::string const& login) const {
    try {
      find(login);
      return "no failure";
    } catch (moxError const& error) {
      return error.errorMessage();
    }
  }

  std::unique_ptr<moxDatabaseConnection> const database_ =
      mox::core::openDatabase({"sqlite::memory:", "", "", {}});
  DatabaseUserDirectory const directory_{[this]() -> moxDatabaseConnection& { return *database_; }};
};

}  // namespace

TEST_F(DatabaseUsers, AUserHasHisOwnUnitsThatExist) {
  auto const user = find("maria");
  EXPECT_EQ(user.id, 7);
  EXPECT_EQ(user.login, "maria");
  EXPECT_EQ(user.name, "Maria José");
  EXPECT_EQ(user.defaultUnit, 3);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{3, 1}, {4, 1}}));
  EXPECT_TRUE(user.worksByUnits);
  EXPECT_FALSE(user.student);
}

TEST_F(DatabaseUsers, LibrariesAreThoseThatAreListedForTheUser) {
  EXPECT_EQ(find("maria").libraries, (std::set<std::string>{"OUTRA", "ZYNC"}));
  EXPECT_TRUE(find("aluno").libraries.empty());
}

TEST_F(DatabaseUsers, WhoDoesNotWorkByUnitsHasThemAll) {
  auto const user = find("admin");
  EXPECT_FALSE(user.worksByUnits);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{1, 1}, {3, 1}, {4, 1}, {8, 8}}));
}

TEST_F(DatabaseUsers, WithoutANameTheLoginStands) {
  EXPECT_EQ(find("admin").name, "admin");
}

TEST_F(DatabaseUsers, AStudentWithoutDefaultUnitHasNone) {
  auto const user = find("aluno");
  EXPECT_EQ(user.defaultUnit, 0);
  EXPECT_TRUE(user.student);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{8, 8}}));
}

TEST_F(DatabaseUsers, ADefaultUnitOutsideHisListIsHisAsWell) {
  database_->execute("delete from ambiente_usuariosunidades");
  EXPECT_EQ(find("maria").units, (std::vector<UserUnit>{{3, 1}}));
}

TEST_F(DatabaseUsers, AnUnknownUserIsAnError) {
  EXPECT_EQ(failureOf("joao"), "user 'joao' is not known");
  EXPECT_EQ(failureOf("MARIA"), "user 'MARIA' is not known");
  EXPECT_EQ(failureOf("' or 1=1 --"), "user '' or 1=1 --' is not known");
}

TEST_F(DatabaseUsers, AUserWhoIsNotActiveIsAnError) {
  EXPECT_EQ(failureOf("antigo"), "user 'antigo' is not active");
}

TEST_F(DatabaseUsers, AFailureOfTheDatabasePassesThrough) {
  database_->execute("drop table ambiente_usuarios");
  EXPECT_NE(failureOf("maria").find("ambiente_usuarios"), std::string::npos);
}
