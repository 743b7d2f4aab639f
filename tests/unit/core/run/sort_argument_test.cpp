#include "core/run/sort_argument.h"

#include <gtest/gtest.h>

#include "unit/core/error_message.h"

namespace mox::core {
namespace {

class OptionData final : public moxSorterDataSourceOptionData {
 public:
  std::string name() const override { return "testOptionData"; }
  void setOrder(std::string const& columnName, bool descending) override {
    order_ = {columnName, descending};
  }
  std::pair<std::string, bool> getOrder() const override { return order_; }

 private:
  std::pair<std::string, bool> order_;
};

class Option final : public moxSorterDataSourceOption {
 public:
  explicit Option(std::vector<std::pair<std::string, std::string>> columns)
      : columns_(std::move(columns)) {}

  std::string name() const override { return "testOption"; }
  bool load(std::shared_ptr<moxXMLNode> /*node*/) override { return false; }
  bool save(std::shared_ptr<moxXMLNode> /*node*/) const override { return false; }
  std::string getName() const override { return "Ordem"; }
  std::string getVisualRepresentation() const override { return {}; }
  std::shared_ptr<moxDataSourceOptionData> createOptionData() const override {
    return std::make_shared<OptionData>();
  }
  std::pair<std::string, bool> getDefaultOrder() const override { return {}; }
  std::vector<std::pair<std::string, std::string>> getAvailableColumns() const override {
    return columns_;
  }

 private:
  std::vector<std::pair<std::string, std::string>> columns_;
};

SortOffer offer(std::string source, std::vector<std::pair<std::string, std::string>> columns) {
  return {std::move(source), std::make_shared<Option>(std::move(columns))};
}

std::vector<SortOffer> twoSorters() {
  return {offer("Fim", {{"nome", "Nome"}, {"nota", "Nota"}}),
          offer("Meio", {{"nota", "Nota final"}, {"a:b", "Nome"}, {"Nome", "x"}})};
}

/// "source.column" or "source.column-", descending.
std::string answers(std::vector<SortArgument> const& arguments,
                    std::vector<SortOffer> const& offers = twoSorters()) {
  std::string text;
  for (auto const& answer : readSortArguments(arguments, offers)) {
    text += (text.empty() ? "" : " ") + answer.source + "." + answer.column +
            (answer.descending ? "-" : "");
  }
  return text;
}

TEST(SortArgument, NearestSorterThatOffersTheColumnIsMeant) {
  EXPECT_EQ(answers({{"nota", true}, {"nome", false}}), "Fim.nota- Fim.nome");
  EXPECT_EQ(answers({{"a:b", true}}), "Meio.a:b-");
}

TEST(SortArgument, NameOfAColumnGoesAheadOfATextForUsersOfItsSorter) {
  EXPECT_EQ(answers({{"Nota final", false}}), "Meio.nota");
  EXPECT_EQ(answers({{"Meio:Nome", false}}), "Meio.Nome");
  EXPECT_EQ(answers({{"Nome", false}}), "Fim.nome");
}

TEST(SortArgument, SourceInFrontAimsAtItsSorter) {
  EXPECT_EQ(answers({{"Meio:nota", true}, {"Fim:Nota", false}}), "Meio.nota- Fim.nota");
}

TEST(SortArgument, UnknownColumnIsRefusedWithWhatIsOnOffer) {
  EXPECT_EQ(test::errorMessageOf([] {
              answers({{"idade", false}});
            }),
            "there is no column 'idade' to sort by; on offer: Fim:nome, Fim:nota, Meio:nota, "
            "Meio:a:b, Meio:Nome");
  EXPECT_EQ(test::errorMessageOf([] {
              answers({{"Fim:idade", false}}, {offer("Fim", {{"nome", ""}})});
            }),
            "there is no column 'Fim:idade' to sort by; on offer: nome");
  EXPECT_EQ(test::errorMessageOf([] {
              answers({{"", false}}, {offer("Fim", {})});
            }),
            "there is no column '' to sort by; on offer: nothing");
}

TEST(SortArgument, AnswersAreGivenToTheirSortersInOrder) {
  auto const offers = twoSorters();
  auto const given =
      readSortArguments({{"nota", true}, {"Meio:nota", false}, {"nome", false}}, offers);
  EXPECT_EQ(sortText(given), "nota, descending, then nota, then nome");
  auto const data = sortOptionData(given, offers);
  ASSERT_EQ(data.size(), 2U);
  ASSERT_EQ(data.at("Fim").size(), 2U);
  auto const order = [&](std::string const& source, std::size_t index) {
    return dynamic_cast<moxSorterDataSourceOptionData&>(*data.at(source)[index]).getOrder();
  };
  EXPECT_EQ(order("Fim", 0), std::pair(std::string("nota"), true));
  EXPECT_EQ(order("Fim", 1), std::pair(std::string("nome"), false));
  EXPECT_EQ(order("Meio", 0), std::pair(std::string("nota"), false));
}

TEST(SortArgument, NothingAskedIsNothingAnswered) {
  EXPECT_TRUE(readSortArguments({}, {}).empty());
  EXPECT_TRUE(sortOptionData({}, twoSorters()).empty());
  EXPECT_EQ(sortText({}), "");
}

}  // namespace
}  // namespace mox::core
