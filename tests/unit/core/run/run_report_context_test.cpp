#include "core/run/run_report_context.h"

#include "mox/zyn/format/generic_formatter.h"
#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {
namespace {

using RunReportContextTest = RunTest;

TEST_F(RunReportContextTest, FormatterOfADefinitionComesFirst) {
  define(
      "<moxFormatterZYNItem><moxDecimalFormatter description=\"Dinheiro\" prefix=\"R$ \"/>"
      "</moxFormatterZYNItem>"
      "<moxFormatterZYNItem><moxDecimalFormatter description=\"moxTextFormatter\"/>"
      "</moxFormatterZYNItem>");
  RunReportContext const context(host_.application());
  auto const formatter = context.formatterByName("Dinheiro");
  ASSERT_TRUE(formatter);
  EXPECT_EQ(formatter->name(), "moxDecimalFormatter");
  EXPECT_EQ(formatter->getPrefix(), "R$ ");
  EXPECT_EQ(context.formatterByName("moxTextFormatter")->name(), "moxDecimalFormatter");
}

TEST_F(RunReportContextTest, ElseARegisteredClassIsMade) {
  RunReportContext const context(host_.application());
  auto const formatter = context.formatterByName("moxTextFormatter");
  ASSERT_TRUE(formatter);
  EXPECT_EQ(formatter->name(), "moxTextFormatter");
  EXPECT_NE(context.formatterByName("moxTextFormatter"), formatter);
}

TEST_F(RunReportContextTest, WhatIsNoFormatterIsNone) {
  defineStudents();
  RunReportContext const context(host_.application());
  for (auto const* const name : {"", "Nada", "Alunos", "moxDataMatrix"}) {
    EXPECT_FALSE(context.formatterByName(name)) << name;
  }
}

TEST_F(RunReportContextTest, KeepsWhatIsHandedOver) {
  RunReportContext context(host_.application());
  auto const matrix = host_.get<moxDataMatrix>("moxDataMatrix");
  context.takeOver(matrix, matrix, true);
  ASSERT_EQ(context.taken().size(), 1U);
  EXPECT_EQ(context.taken()[0].matrix, matrix);
  EXPECT_EQ(context.taken()[0].relation, matrix);
  EXPECT_TRUE(context.taken()[0].generated);
}

TEST_F(RunReportContextTest, EveryRunHasOne) {
  defineStudents();
  auto run = newRun();
  auto const lent = run.context().getReportContext();
  ASSERT_TRUE(lent);
  EXPECT_EQ(lent.get(), &run.reportContext());
  EXPECT_TRUE(run.reportContext().taken().empty());
}

}  // namespace
}  // namespace mox::core::run_test
