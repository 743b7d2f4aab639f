#include "zyn/items/zyn_tools.h"

#include "mox/zyn/items/zyn_cache.h"
#include "support/fake_database.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;
using items_test::messageOf;

namespace {

using Texts = std::vector<std::string>;

class ZynTools : public ItemsTest {
 protected:
  ZynTools() {
    auto database = std::make_unique<mox_test::FakeDatabase>();
    database_ = database.get();
    using FieldType = moxDatabaseConnection::FieldType;
    database_->result.fields = {{"id", FieldType::kInt}, {"nome", FieldType::kText}};
    host_.application().setDatabase(std::move(database));
  }
  ~ZynTools() override { host_.get<moxZYNCache>("moxZYNCache")->clear(); }

  void addPack(std::string const& content) {
    host_.get<moxZYNCache>("moxZYNCache")
        ->appendCollection(collection("<moxZYNPack name=\"Alunos\">" + content + "</moxZYNPack>"));
  }

  std::map<int, std::string> ask(std::set<int> const& ids, std::string const& pack = "Alunos") {
    return host_.get<moxZYNTools>("moxZYNTools")->getDescricoesIds(pack, ids, 10, 20, 30);
  }

  mox_test::FakeDatabase* database_;
};

}  // namespace

TEST_F(ZynTools, AnUnknownPackIsAnErrorThatNamesIt) {
  EXPECT_EQ(messageOf([&] { ask({1}, "Ninguém"); }), "ZYN Pack não encontrado: Ninguém");
}

TEST_F(ZynTools, AnItemThatIsNoPackIsNoPack) {
  host_.get<moxZYNCache>("moxZYNCache")
      ->appendCollection(collection("<moxTestItem name=\"Alunos\"/>"));
  EXPECT_EQ(messageOf([&] { ask({1}); }), "ZYN Pack não encontrado: Alunos");
}

TEST_F(ZynTools, APackWithoutAQueryIsAnError) {
  addPack("<moxTestPackItem/><moxDataMatrix/>");
  EXPECT_EQ(messageOf([&] { ask({1}); }), "ZYN Pack não contém busca por Id.");
}

TEST_F(ZynTools, WithoutWhereTheConditionBringsTheWord) {
  addPack("<moxTestFetch select=\"select id, nome from aluno\"/>");
  database_->result.rows = {{2, std::string("Bia")}, {1, std::string("Ana")}};
  auto const found = ask({2, 1, 3});
  EXPECT_EQ(database_->preparedTexts(),
            Texts{"select id, nome from aluno where aluno.id_aluno in (?,?,?)"});
  EXPECT_EQ(database_->binds(), (Texts{"0: int 1", "1: int 2", "2: int 3"}));
  EXPECT_EQ(found, (std::map<int, std::string>{{1, "Ana"}, {2, "Bia"}}));
}

TEST_F(ZynTools, AWhereOfItsOwnIsJoined) {
  addPack("<moxTestFetch select=\"select id, nome from aluno\" where=\"where ativo = 1\"/>");
  ask({7});
  EXPECT_EQ(database_->preparedTexts(),
            Texts{"select id, nome from aluno where ativo = 1 and aluno.id_aluno in (?)"});
}

TEST_F(ZynTools, TheUsersTokenBindsTheUserInItsPlace) {
  addPack(
      "<moxTestFetch select=\"select id, nome from aluno\" where=\"where u = {{p_idUsuario}}\"/>");
  ask({7});
  EXPECT_EQ(database_->preparedTexts(),
            Texts{"select id, nome from aluno where u = ? and aluno.id_aluno in (?)"});
  EXPECT_EQ(database_->binds(), (Texts{"0: int 30", "1: int 7"}));
}

TEST_F(ZynTools, EachTokenBindsItsValueInOrderOfAppearance) {
  addPack(
      "<moxTestFetch select=\"select {{p_idUnidadeNegocioMatriz}}, nome from aluno\""
      " where=\"where a = {{p_idUnidadeNegocioPadrao}} or b = {{p_idUnidadeNegocioMatriz}}\"/>");
  ask({7});
  EXPECT_EQ(database_->binds(), (Texts{"0: int 20", "1: int 10", "2: int 20", "3: int 7"}));
}

TEST_F(ZynTools, AnUnknownTokenIsAnErrorThatNamesIt) {
  addPack("<moxTestFetch select=\"s\" where=\"where u = {{p_outro}}\"/>");
  EXPECT_EQ(messageOf([&] { ask({7}); }), "Filtro com token p_outro não localizado");
}

TEST_F(ZynTools, ATokenThatIsNotClosedStaysText) {
  addPack("<moxTestFetch select=\"select '{{' from aluno\"/>");
  ask({7});
  EXPECT_EQ(database_->preparedTexts(),
            Texts{"select '{{' from aluno where aluno.id_aluno in (?)"});
}

TEST_F(ZynTools, NoIdentifiersGiveNothingWithoutAQuery) {
  addPack("<moxTestFetch select=\"s\"/>");
  EXPECT_TRUE(ask({}).empty());
  EXPECT_TRUE(database_->preparedTexts().empty());
}

TEST_F(ZynTools, AResultWithoutDescriptionsIsAnError) {
  addPack("<moxTestFetch select=\"s\"/>");
  database_->result.fields.pop_back();
  EXPECT_EQ(messageOf([&] { ask({7}); }), "The query for descriptions gives no column for them.");
}
