#include "zyn/items/zyn_tools.h"

#include <gtest/gtest.h>

#include "mox/zyn/items/fetch_desc_from_id.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "support/databases.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

class AlunoById final : public moxZYNFetchDescFromID {
 public:
  std::string name() const override { return "moxAlunoById"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return true; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return true; }
  std::string selectPart() const override { return "select id, nome from aluno"; }
  std::string wherePart() const override {
    return "where id_unidade = {{p_idUnidadeNegocioPadrao}}";
  }
  std::string table() const override { return "aluno"; }
  std::string idColumn() const override { return "id"; }
};

class ZynToolsOnDatabase : public OnEveryDatabase {
 protected:
  ZynToolsOnDatabase() {
    db.run("create table aluno (id int primary key, nome varchar(40), id_unidade int)");
    db.run("insert into aluno values (1, 'Ana', 5), (2, 'Bia', 5), (3, 'Caio', 6), (4, null, 5)");
    auto const pack = host_.get<moxZYNPack>("moxZYNPack");
    pack->setDescription("Alunos");
    pack->items().add(std::make_shared<AlunoById>());
    auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
    collection->items().add(pack);
    host_.get<moxZYNCache>("moxZYNCache")->appendCollection(collection);
  }

  TestHost host_{db.url()};
};

TEST_P(ZynToolsOnDatabase, FindsTheDescriptionsOfTheUnit) {
  auto const found =
      host_.get<moxZYNTools>("moxZYNTools")->getDescricoesIds("Alunos", {4, 3, 2, 1, 99}, 5, 0, 0);
  EXPECT_EQ(found, (std::map<int, std::string>{{1, "Ana"}, {2, "Bia"}, {4, ""}}));
}

MOX_ON_EVERY_DATABASE(ZynToolsOnDatabase);

}  // namespace
