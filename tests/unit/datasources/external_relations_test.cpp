#include "zyn/datasources/external_relations.h"

#include <gtest/gtest.h>

TEST(ExternalRelations, ANameWithoutAPairStandsForItself) {
  ExternalRelations relations;
  relations.set({{"outra", "x"}});
  EXPECT_EQ(relations.nameInContext("notas"), "notas");
}

TEST(ExternalRelations, TheFirstOfTwoPairsForOneNameHolds) {
  ExternalRelations relations;
  relations.set({{"notas", "a"}, {"notas", "b"}});
  EXPECT_EQ(relations.nameInContext("notas"), "a");
}

TEST(ExternalRelations, NamesAreReplacedOnce) {
  ExternalRelations relations;
  relations.set({{"notas", "a"}, {"a", "b"}});
  EXPECT_EQ(relations.nameInContext("notas"), "a");
}

TEST(ExternalRelations, NewPairsTakeThePlaceOfAllEarlierOnes) {
  ExternalRelations relations;
  relations.set({{"notas", "a"}});
  relations.set({{"faltas", "b"}});
  EXPECT_EQ(relations.nameInContext("notas"), "notas");
  EXPECT_EQ(relations.nameInContext("faltas"), "b");
}
