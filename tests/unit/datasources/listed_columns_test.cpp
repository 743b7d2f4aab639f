#include "zyn/datasources/listed_columns.h"

#include "definition_fixture.h"

namespace {

class ListedColumnsTest : public mox_test::DefinitionTest {
 protected:
  moxDataMatrixTypes::Types typeOf(std::string const& element) {
    return listedColumnType(*document("<" + element + "/>")->root());
  }
};

}  // namespace

TEST_F(ListedColumnsTest, EachOfTheFourKindsIsReadAsItIsWritten) {
  for (auto const type : {moxDataMatrixTypes::Int, moxDataMatrixTypes::Double,
                          moxDataMatrixTypes::Text, moxDataMatrixTypes::Date}) {
    EXPECT_EQ(typeOf(listedColumnElement(type)), type);
  }
  EXPECT_STREQ(listedColumnElement(moxDataMatrixTypes::Date), "moxDataMatrixDateColumn");
}

TEST_F(ListedColumnsTest, AnElementOfNoSuchClassIsRefusedAsTheTableBehindItDoes) {
  for (auto const* const element : {"column", "moxDataMatrixBlobColumn"}) {
    try {
      typeOf(element);
      FAIL() << element << " was read";
    } catch (std::out_of_range const& error) {
      EXPECT_STREQ(error.what(), "map::at");
    }
  }
}

TEST_F(ListedColumnsTest, ReadersOfFilesAreToldTheElement) {
  EXPECT_EQ(failureOf([&] { typeOf("column"); }), "Classe de coluna inválida: column");
}

TEST_F(ListedColumnsTest, AKindWithoutAnElementIsNotWritten) {
  EXPECT_THROW((void)listedColumnElement(moxDataMatrixTypes::Blob), std::out_of_range);
}
