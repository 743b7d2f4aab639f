#include "mox/core/application.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "mox/zyn/items/zyn_utils.h"
#include "unit/search/search_fixture.h"

namespace {

using search_test::failureOf;

class SearchXml : public search_test::SearchTest {
 protected:
  /// The settings as they are written, without the attributes that each test does not ask for.
  std::string writtenGeneral(moxSearch const& search) {
    auto const text = textOf(search);
    auto const from = text.find("<General");
    return text.substr(from, text.find("<dataSource", from) - from);
  }

  std::shared_ptr<moxSearch> withGeneral(std::string const& attributes,
                                         std::string const& content = "") {
    return searchOf("<General " + attributes + ">" + content + "</General>");
  }
};

std::string const kSourceT =
    "<moxSQLDataSource name=\"alunos\"><Command>select 1</Command></moxSQLDataSource>";

}  // namespace

TEST_F(SearchXml, NamesAreAttributesOfTheRoot) {
  auto const made = search("<moxSearch VisibleName=\"Alunos\" InternalName=\"pesqAlunos\"/>");
  EXPECT_EQ(made->getHeaderName(), "Alunos");
  EXPECT_EQ(made->description(), "pesqAlunos");
  EXPECT_EQ(textOf(*made).find("<moxSearch VisibleName=\"Alunos\" InternalName=\"pesqAlunos\">"),
            0u);
}

TEST_F(SearchXml, ADocumentWithoutGeneralKeepsTheDefaultsAndHasNoSource) {
  auto const made = searchOf("<dataSource>" + kSourceT + "</dataSource>");
  EXPECT_EQ(made->getInitialWidth(), 760u);
  EXPECT_EQ(made->getInitialHeight(), 450u);
  EXPECT_TRUE(made->requirePermission());
  EXPECT_FALSE(made->requireFilter());
  EXPECT_FALSE(made->autoFill());
  EXPECT_FALSE(made->allowReorder());
  EXPECT_FALSE(made->getInitialOrderAscending());
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(sourceOf(*made), nullptr);
  EXPECT_EQ(made->getSqlDataSource(), nullptr);
  EXPECT_EQ(made->getInitialOrderColumn(), nullptr);
}

TEST_F(SearchXml, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const made = withGeneral("requireFilter=\"1\"");
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_TRUE(made->requireFilter());
}

TEST_F(SearchXml, GeneralIsAlwaysWritten) {
  EXPECT_EQ(textOf(*newSearch()),
            "<moxSearch VisibleName=\"\" InternalName=\"\"><General requireFilter=\"0\" "
            "requirePermission=\"1\"><AutoFill atStartup=\"0\"/><Allowing Reorder=\"0\"/>"
            "<Geometry width=\"760\" height=\"450\"/></General><dataSource/></moxSearch>");
}

TEST_F(SearchXml, RequireFilterIsTrueForOneAlone) {
  EXPECT_FALSE(withGeneral("")->requireFilter());
  EXPECT_FALSE(withGeneral("requireFilter=\"10\"")->requireFilter());
  EXPECT_FALSE(withGeneral("requireFilter=\"0\"")->requireFilter());
  auto const made = withGeneral("requireFilter=\"1\"");
  EXPECT_TRUE(made->requireFilter());
  EXPECT_NE(writtenGeneral(*made).find(" requireFilter=\"1\""), std::string::npos);
}

TEST_F(SearchXml, RequirePermissionIsFalseForZeroAlone) {
  EXPECT_TRUE(withGeneral("")->requirePermission());
  EXPECT_TRUE(withGeneral("requirePermission=\"00\"")->requirePermission());
  EXPECT_TRUE(withGeneral("requirePermission=\"no\"")->requirePermission());
  auto const made = withGeneral("requirePermission=\"0\"");
  EXPECT_FALSE(made->requirePermission());
  EXPECT_NE(writtenGeneral(*made).find(" requirePermission=\"0\""), std::string::npos);
}

TEST_F(SearchXml, MissingRequirementsHaveOppositeDefaults) {
  auto const made = withGeneral("");
  EXPECT_TRUE(made->requirePermission());
  EXPECT_FALSE(made->requireFilter());
}

TEST_F(SearchXml, OfAtStartupTheFirstCharacterCounts) {
  EXPECT_TRUE(withGeneral("", "<AutoFill atStartup=\"10\"/>")->autoFill());
  EXPECT_FALSE(withGeneral("", "<AutoFill atStartup=\"01\"/>")->autoFill());
  EXPECT_FALSE(withGeneral("", "<AutoFill/>")->autoFill());
  EXPECT_FALSE(withGeneral("", "")->autoFill());
  EXPECT_NE(writtenGeneral(*withGeneral("", "<AutoFill atStartup=\"1\"/>"))
                .find("<AutoFill atStartup=\"1\"/>"),
            std::string::npos);
}

TEST_F(SearchXml, OfReorderTheFirstCharacterCounts) {
  EXPECT_TRUE(withGeneral("", "<Allowing Reorder=\"10\"/>")->allowReorder());
  EXPECT_FALSE(withGeneral("", "<Allowing Reorder=\"yes\"/>")->allowReorder());
  EXPECT_FALSE(withGeneral("", "")->allowReorder());
  EXPECT_NE(writtenGeneral(*withGeneral("", "<Allowing Reorder=\"1\"/>"))
                .find("<Allowing Reorder=\"1\"/>"),
            std::string::npos);
}

TEST_F(SearchXml, GeometryIsReadWhereItStands) {
  auto const made = withGeneral("", "<Geometry width=\"1024\" height=\" 600px\"/>");
  EXPECT_EQ(made->getInitialWidth(), 1024u);
  EXPECT_EQ(made->getInitialHeight(), 600u);
  EXPECT_NE(writtenGeneral(*made).find("<Geometry width=\"1024\" height=\"600\"/>"),
            std::string::npos);
  EXPECT_EQ(withGeneral("")->getInitialWidth(), 760u);
}

TEST_F(SearchXml, AGeometryWithoutNumbersIsZero) {
  auto const made = withGeneral("", "<Geometry width=\"wide\"/>");
  EXPECT_EQ(made->getInitialWidth(), 0u);
  EXPECT_EQ(made->getInitialHeight(), 0u);
}

TEST_F(SearchXml, AGeometryBeyondAllBoundsIsKeptWithin) {
  auto const made = withGeneral("", "<Geometry width=\"-5\" height=\"99999999999999999999\"/>");
  EXPECT_EQ(made->getInitialWidth(), 0u);
  EXPECT_EQ(made->getInitialHeight(), 4294967295u);
  EXPECT_NE(writtenGeneral(*made).find("<Geometry width=\"0\" height=\"4294967295\"/>"),
            std::string::npos);
}

TEST_F(SearchXml, TheInitialOrderIsKeptByItsNames) {
  std::string const ordering =
      "<InitialOrdering columnName=\"nome\" tableNameOrigin=\"pessoa\" "
      "columnNameOrigin=\"nome_completo\" tableName=\"p\" direction=\"asc\"/>";
  auto const made = withGeneral("", ordering);
  EXPECT_TRUE(made->getInitialOrderAscending());
  EXPECT_NE(writtenGeneral(*made).find("</General>"), std::string::npos);
  EXPECT_NE(writtenGeneral(*made).find(ordering), std::string::npos);
}

TEST_F(SearchXml, TheOlderAttributeOfTheInitialOrderIsReadInTheNewersPlace) {
  auto const older = withGeneral("", "<InitialOrdering column=\"nome\"/>");
  EXPECT_NE(
      writtenGeneral(*older).find("<InitialOrdering columnName=\"nome\" tableNameOrigin=\"\" "
                                  "columnNameOrigin=\"\" tableName=\"\" direction=\"desc\"/>"),
      std::string::npos);
  auto const both = withGeneral("", "<InitialOrdering column=\"x\" columnName=\"nome\"/>");
  EXPECT_NE(writtenGeneral(*both).find("columnName=\"nome\""), std::string::npos);
}

TEST_F(SearchXml, TheDirectionIsAscendingForThatWordAlone) {
  auto const ascending = [this](std::string const& direction) {
    return withGeneral("", "<InitialOrdering columnName=\"a\" direction=\"" + direction + "\"/>")
        ->getInitialOrderAscending();
  };
  EXPECT_TRUE(ascending("asc"));
  EXPECT_FALSE(ascending("Asc"));
  EXPECT_FALSE(ascending("desc"));
  EXPECT_FALSE(ascending(""));
}

TEST_F(SearchXml, WithoutAnInitialOrderNoneIsWritten) {
  EXPECT_EQ(textOf(*withGeneral("")).find("InitialOrdering"), std::string::npos);
}

TEST_F(SearchXml, AnExternalSourceIsNamedAndNotOwned) {
  auto const made =
      searchOf("<General dataSource=\"alunos\"/><dataSource>" + kSourceT + "</dataSource>");
  EXPECT_EQ(made->dataSourceExterno(), "alunos");
  EXPECT_EQ(made->getDataSource(), nullptr);
  auto const text = textOf(*made);
  EXPECT_NE(text.find("<General dataSource=\"alunos\" requireFilter"), std::string::npos);
  EXPECT_EQ(text.find("<dataSource"), std::string::npos);
}

TEST_F(SearchXml, AnUnknownExternalNameFailsWhenItIsResolvedAndNotWhenItIsRead) {
  auto const made = withGeneral("dataSource=\"nenhuma\"");
  EXPECT_EQ(failureOf([&] { sourceOf(*made); }).message, "Fonte de dados externa inválida");
}

TEST_F(SearchXml, TheFirstChildOfTheSourceElementIsTheSource) {
  auto const made = searchOf("<General/><dataSource>" + kSourceT + "<other/></dataSource>");
  ASSERT_NE(made->getDataSource(), nullptr);
  EXPECT_EQ(made->getDataSource()->name(), "moxSQLDataSource");
  EXPECT_EQ(made->getDataSource()->getName(), "alunos");
  EXPECT_EQ(made->dataSourceExterno(), "");
}

TEST_F(SearchXml, TheOwnedSourceIsWrittenUnderItsClassName) {
  auto const made = searchOf("<General/><dataSource>" + kSourceT + "</dataSource>");
  EXPECT_NE(textOf(*made).find("</General><dataSource><moxSQLDataSource name=\"alunos\" "
                               "VisibleName=\"\" whereand=\"\"><Command type=\"0\">select 1"
                               "</Command><Columns/></moxSQLDataSource></dataSource></moxSearch>"),
            std::string::npos);
}

TEST_F(SearchXml, ACommandInTheSourceElementIsTheOldFormOfAQuery) {
  auto const made = searchOf(
      "<General/><dataSource name=\"velha\"><Columns/><Command>select 2</Command></dataSource>");
  auto const sql = made->getSqlDataSource();
  ASSERT_NE(sql, nullptr);
  EXPECT_EQ(sql->getName(), "velha");
  EXPECT_EQ(sql->getSQL(), "select 2");
  EXPECT_NE(textOf(*made).find("<dataSource><moxSQLDataSource name=\"velha\""), std::string::npos);
}

TEST_F(SearchXml, WithoutASourceElementTheRootIsTheSource) {
  auto const made = search(
      "<moxSQLDataSource name=\"raiz\" InternalName=\"p\"><General/><Command>select 3</Command>"
      "</moxSQLDataSource>");
  ASSERT_NE(made->getSqlDataSource(), nullptr);
  EXPECT_EQ(made->getSqlDataSource()->getName(), "raiz");
  EXPECT_EQ(made->getSqlDataSource()->getSQL(), "select 3");
  EXPECT_EQ(made->description(), "p");
}

TEST_F(SearchXml, ARootThatIsNoSourceGivesNone) {
  for (auto const* root : {"moxSearch", "moxDataMatrix", "nobodysClass"}) {
    auto const made = search("<" + std::string(root) + "><General/></" + root + ">");
    EXPECT_EQ(made->getDataSource(), nullptr) << root;
    EXPECT_EQ(sourceOf(*made), nullptr) << root;
  }
}

TEST_F(SearchXml, AnEmptySourceElementGivesNoSource) {
  auto const made =
      search("<moxSQLDataSource><General/><dataSource/><Command>x</Command></moxSQLDataSource>");
  EXPECT_EQ(made->getDataSource(), nullptr);
}

TEST_F(SearchXml, AChildOfAnotherKindGivesNoSource) {
  EXPECT_EQ(searchOf("<General/><dataSource><moxDataMatrix/></dataSource>")->getDataSource(),
            nullptr);
}

TEST_F(SearchXml, AChildOfAnUnknownClassFails) {
  auto const element =
      document("<moxSearch><General/><dataSource><nobodys/></dataSource></moxSearch>");
  auto const made = newSearch();
  EXPECT_THROW(made->load(element->root()), moxPluginNotFound);
}

TEST_F(SearchXml, WhatIsWrittenReadsTheSame) {
  for (auto const* text :
       {"<moxSearch VisibleName=\"A\" InternalName=\"a\"><General requireFilter=\"1\" "
        "requirePermission=\"0\"><AutoFill atStartup=\"1\"/><Allowing Reorder=\"1\"/>"
        "<Geometry width=\"1\" height=\"2\"/><InitialOrdering columnName=\"c\" direction=\"asc\"/>"
        "</General><dataSource><moxSQLDataSource name=\"s\"><Command>x</Command>"
        "</moxSQLDataSource></dataSource></moxSearch>",
        "<moxSearch InternalName=\"b\"><General dataSource=\"fora\"/></moxSearch>",
        "<moxSearch/>"}) {
    auto const once = textOf(*search(text));
    EXPECT_EQ(textOf(*search(once)), once);
  }
}

TEST_F(SearchXml, ACopyIsEqualWithAndWithoutASource) {
  auto const utils = host_.get<moxZYNUtils>("moxZYNUtils");
  for (auto const& made : {withGeneral(""), withGeneral("dataSource=\"fora\""),
                           searchOf("<General/><dataSource>" + kSourceT + "</dataSource>")}) {
    auto const copy = std::dynamic_pointer_cast<moxSearch>(utils->duplicateItem(made));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(textOf(*copy), textOf(*made));
  }
}

TEST_F(SearchXml, ASearchOfAnUnknownSourceIsLeftOutOfItsCollection) {
  auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
  collection->unserialize(
      document("<moxZYNCollection><moxSearch InternalName=\"a\"><General/><dataSource><nobodys/>"
               "</dataSource></moxSearch><moxSearch InternalName=\"b\"/></moxZYNCollection>")
          ->root());
  EXPECT_EQ(collection->findItem("a"), nullptr);
  EXPECT_NE(collection->findItem("b"), nullptr);
  EXPECT_EQ(dynamic_cast<moxZYNLoadReport const&>(*collection).skippedElements().size(), 1u);
}
