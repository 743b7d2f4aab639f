#include "zyn/sql/filtro_unidade_null.h"

#include <gtest/gtest.h>

#include "unit/sql/filter_binds.h"

namespace mox_test {

namespace {

TEST(FiltroUnidadeNull, RowsOfNoUnitPassWhenTheyMay) {
  FiltroUnidadeNull filter({"t", "id_unidade"}, true);
  filter.pushVal(3);
  filter.pushVal(1);
  EXPECT_EQ(filter.getSql(), " ( t.id_unidade in (?,?)  or t.id_unidade is null  ) ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 1", "1: int 3", "counter 2"}));
}

TEST(FiltroUnidadeNull, RowsOfNoUnitStayOutOtherwise) {
  FiltroUnidadeNull filter({"t", "id_unidade"}, false);
  filter.pushVal(3);
  EXPECT_EQ(filter.getSql(), " ( t.id_unidade in (?)  ) ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 3", "counter 1"}));
}

TEST(FiltroUnidadeNull, WithoutATableTheColumnIsBare) {
  FiltroUnidadeNull filter({"", "id_unidade"}, true);
  filter.pushVal(3);
  EXPECT_EQ(filter.getSql(), " ( id_unidade in (?)  or id_unidade is null  ) ");
}

TEST(FiltroUnidadeNull, NoUnitsLetNothingPass) {
  for (bool const unitMayBeNull : {false, true}) {
    FiltroUnidadeNull filter({"t", "id_unidade"}, unitMayBeNull);
    EXPECT_EQ(filter.getSql(), "1=0");
    EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
  }
}

TEST(FiltroUnidadeNull, NamesTheColumnItRestricts) {
  FiltroUnidadeNull const filter({"t", "id_unidade"}, true);
  EXPECT_EQ(filter.getTableName(), "t");
  EXPECT_EQ(filter.getColumnName(), "id_unidade");
}

}  // namespace

}  // namespace mox_test
