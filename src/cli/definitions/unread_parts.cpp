#include "cli/definitions/unread_parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>
#include <string_view>

#include "mox/core/xml_table.h"

namespace mox::cli {

namespace {

constexpr std::uint32_t kDepthOfItems = 2;

/// What an attribute may say.
enum class Value {
  kText,
  kName,      // not empty
  kItemName,  // not empty for an item: a member of a group is known by the member's name
  kFlag,
  kYesNo,
  kDirection,
  kCount
};

struct AttributeForm {
  std::string_view name;
  Value value;
};

struct ElementForm;

/// The elements that are read inside of one.
struct ChildForms {
  ElementForm const* forms = nullptr;
  std::size_t count = 0;

  constexpr ChildForms() = default;
  // Implicit, so that a form can name its list.
  template <std::size_t Count>
  constexpr ChildForms(ElementForm const (&list)[Count]) : forms(list), count(Count) {}
};

struct ElementForm {
  std::string_view name = {};  // empty: any
  std::span<AttributeForm const> attributes = {};
  ChildForms children = {};
  bool isList = false;     // of several only the first is read
  bool isOpen = false;     // classes of its own read what else stands in it
  bool needsText = false;  // it says nothing without
};

constexpr AttributeForm kNamed[] = {{"name", Value::kName}};
constexpr AttributeForm kFromSource[] = {{"source", Value::kName}};

constexpr AttributeForm kFunctionParts[] = {{"source", Value::kName}, {"target", Value::kName}};
constexpr ElementForm kIndex[] = {{.name = "Index", .attributes = kNamed}};
constexpr ElementForm kFunction[] = {{.attributes = kFunctionParts, .isOpen = true}};
constexpr ElementForm kAggregatorLists[] = {
    {.name = "Indexes", .children = kIndex, .isList = true},
    {.name = "Functions", .children = kFunction, .isList = true}};
constexpr ElementForm kAggregator[] = {
    {.name = "moxDataMatrixAggregator", .children = kAggregatorLists, .isList = true}};
constexpr AttributeForm kAggregationParts[] = {{"name", Value::kItemName},
                                               {"dataSource", Value::kName},
                                               {"generateTempTable", Value::kFlag},
                                               {"countColumn", Value::kFlag}};

constexpr AttributeForm kSortedParts[] = {
    {"name", Value::kName}, {"desc", Value::kText}, {"dir", Value::kDirection}};
constexpr ElementForm kSorted[] = {{.attributes = kSortedParts}};
constexpr AttributeForm kSorterParts[] = {{"name", Value::kItemName},
                                          {"source", Value::kName},
                                          {"replace", Value::kYesNo},
                                          {"userDefined", Value::kYesNo},
                                          {"description", Value::kText}};

constexpr AttributeForm kObjectParts[] = {{"name", Value::kItemName}};
constexpr ElementForm kObjectLists[] = {{.name = "Sql", .isList = true, .needsText = true},
                                        {.name = "Binds", .isList = true, .isOpen = true}};

constexpr ElementForm kUnitedColumn[] = {{.attributes = kNamed}};
constexpr ElementForm kUnited[] = {
    {.name = "source", .attributes = kNamed, .children = kUnitedColumn}};
constexpr ElementForm kUnionLists[] = {{.name = "sources", .children = kUnited, .isList = true}};
constexpr AttributeForm kUnionParts[] = {{"name", Value::kItemName},
                                         {"generateTempTable", Value::kFlag}};

constexpr AttributeForm kComputedParts[] = {{"name", Value::kName},
                                            {"type", Value::kFlag},
                                            {"decimalPrecision", Value::kCount},
                                            {"decimalOperation", Value::kFlag}};
constexpr ElementForm kComputed[] = {{.attributes = kComputedParts, .needsText = true}};
constexpr ElementForm kExpressionLists[] = {
    {.name = "expressions", .children = kComputed, .isList = true}};
constexpr AttributeForm kExpressionParts[] = {
    {"name", Value::kItemName}, {"source", Value::kName}, {"convertZeroToNull", Value::kFlag}};

constexpr AttributeForm kAcrossParts[] = {{"source", Value::kName}, {"formatter", Value::kText}};
constexpr AttributeForm kCellParts[] = {{"source", Value::kName}, {"aggregation", Value::kName}};
constexpr ElementForm kAcross[] = {{.name = "column", .attributes = kAcrossParts}};
constexpr ElementForm kRow[] = {{.name = "row", .attributes = kFromSource}};
constexpr ElementForm kCell[] = {{.name = "cell", .attributes = kCellParts}};
constexpr ElementForm kPivotLists[] = {{.name = "columns", .children = kAcross, .isList = true},
                                       {.name = "rows", .children = kRow, .isList = true},
                                       {.name = "cells", .children = kCell, .isList = true}};
constexpr AttributeForm kPivotParts[] = {{"name", Value::kItemName}, {"source", Value::kName}};

constexpr AttributeForm kTakenParts[] = {{"columnName", Value::kName},
                                         {"acolumnAlias", Value::kName}};
constexpr AttributeForm kConditionParts[] = {{"columnNameOrigin", Value::kName},
                                             {"sourceNameRelac", Value::kText},
                                             {"columnNameRelac", Value::kText},
                                             {"columnNameJoin", Value::kName}};
constexpr ElementForm kTaken[] = {{.attributes = kTakenParts}};
constexpr ElementForm kCondition[] = {{.attributes = kConditionParts}};
constexpr ElementForm kJoinedLists[] = {{.name = "columns", .children = kTaken, .isList = true},
                                        {.name = "joins", .children = kCondition, .isList = true}};
constexpr ElementForm kJoined[] = {
    {.name = "source", .attributes = kNamed, .children = kJoinedLists}};
constexpr ElementForm kJoinLists[] = {{.name = "sources", .children = kJoined, .isList = true}};
constexpr AttributeForm kJoinParts[] = {{"name", Value::kItemName}};

constexpr ElementForm kSources[] = {
    {.name = "moxAggregationDataSource", .attributes = kAggregationParts, .children = kAggregator},
    {.name = "moxSorterDataSource", .attributes = kSorterParts, .children = kSorted},
    {.name = "moxObjectDataSource", .attributes = kObjectParts, .children = kObjectLists},
    {.name = "moxUnionDataSource", .attributes = kUnionParts, .children = kUnionLists},
    {.name = "moxExpressionDataSource",
     .attributes = kExpressionParts,
     .children = kExpressionLists},
    {.name = "moxDataSourcePivoting", .attributes = kPivotParts, .children = kPivotLists},
    {.name = "moxJoinDataSource", .attributes = kJoinParts, .children = kJoinLists}};

/// Null for a name that none of the forms has and none takes.
ElementForm const* formOf(std::string_view name, ChildForms const& forms) {
  auto const* const end = forms.forms + forms.count;
  auto const* const found = std::find_if(forms.forms, end, [&](ElementForm const& form) {
    return form.name.empty() || form.name == name;
  });
  return found != end ? found : nullptr;
}

/// The names of forms, one behind the other.
template <class Forms>
std::string namesOf(Forms const& forms) {
  std::string names;
  for (auto const& form : forms) {
    names += (names.empty() ? "" : ", ") + std::string(form.name);
  }
  return names.empty() ? "nothing" : names;
}

/// What a value should have been; empty for one that is good.
std::string_view faultOf(Value kind, std::string_view value) {
  switch (kind) {
    case Value::kFlag:
      return value == "0" || value == "1" ? "" : "0 or 1";
    case Value::kYesNo:
      return value == "yes" || value == "no" ? "" : "yes or no";
    case Value::kDirection:
      return value == "asc" || value == "desc" ? "" : "asc or desc";
    case Value::kCount:
      return value.find_first_not_of("0123456789") == value.npos ? "" : "a number from 0 on";
    default:
      return "";
  }
}

class PartsCheck {
 public:
  PartsCheck(moxXMLTable const& table, std::string const& path) : table_(table), path_(path) {}

  void check(std::uint32_t element, ElementForm const& form) {
    checkAttributes(element, form);
    if (form.needsText && table_.elements()[element].isMixed == 0 &&
        table_.textOf(table_.elements()[element]).empty()) {
      tell(element, fmt::format("{} has no text", nameOf(element)));
    }
    std::set<std::string_view> lists;
    auto const end = table_.elements()[element].end;
    for (auto child = element + 1; child < end; child = table_.elements()[child].end) {
      checkChild(child, element, form, lists);
    }
  }

  std::vector<std::string> take() { return std::move(told_); }

 private:
  std::string_view nameOf(std::uint32_t element) const {
    return table_.nameOf(table_.elements()[element]);
  }

  void tell(std::uint32_t element, std::string const& fault) {
    told_.push_back(fmt::format("{}:{}: {}", path_, table_.lineOf(element), fault));
  }

  std::span<moxXMLTable::Attribute const> attributesOf(std::uint32_t element) const {
    auto const* const elements = table_.elements();
    auto const first = elements[element].firstAttribute;
    return {table_.attributes() + first, elements[element + 1].firstAttribute - first};
  }

  void checkAttributes(std::uint32_t element, ElementForm const& form) {
    std::set<std::string_view> said;
    for (auto const& attribute : attributesOf(element)) {
      auto const name = table_.nameOf(attribute);
      auto const known =
          std::find_if(form.attributes.begin(), form.attributes.end(),
                       [&](AttributeForm const& candidate) { return candidate.name == name; });
      if (known != form.attributes.end()) {
        checkValue(element, *known, table_.valueOf(attribute));
        said.insert(table_.valueOf(attribute).empty() ? std::string_view() : name);
      } else if (!form.isOpen) {
        tell(element, fmt::format("{} does not read its attribute {}; it reads {}", nameOf(element),
                                  name, namesOf(form.attributes)));
      }
    }
    for (auto const& attribute : form.attributes) {
      if (isNeeded(attribute.value, element) && !said.contains(attribute.name)) {
        tell(element, fmt::format("{} has no {}", nameOf(element), attribute.name));
      }
    }
  }

  bool isNeeded(Value value, std::uint32_t element) const {
    return value == Value::kName ||
           (value == Value::kItemName && table_.elements()[element].depth == kDepthOfItems);
  }

  void checkValue(std::uint32_t element, AttributeForm const& attribute, std::string_view value) {
    auto const wanted = value.empty() ? std::string_view() : faultOf(attribute.value, value);
    if (!wanted.empty()) {
      tell(element, fmt::format("{}=\"{}\" of {} should be {}", attribute.name, value,
                                nameOf(element), wanted));
    }
  }

  void checkChild(std::uint32_t child, std::uint32_t parent, ElementForm const& form,
                  std::set<std::string_view>& lists) {
    auto const* const known = formOf(nameOf(child), form.children);
    if (known == nullptr && form.isOpen) {
      return;
    }
    if (known == nullptr) {
      std::span const read(form.children.forms, form.children.count);
      tell(child, fmt::format("{} does not read {} inside of it; it reads {}", nameOf(parent),
                              nameOf(child), namesOf(read)));
      return;
    }
    if (known->isList && !lists.insert(nameOf(child)).second) {
      tell(child, fmt::format("{} reads its first {} alone", nameOf(parent), nameOf(child)));
      return;
    }
    check(child, *known);
  }

  moxXMLTable const& table_;
  std::string const& path_;
  std::vector<std::string> told_;
};

}  // namespace

std::vector<std::string> unreadParts(moxXMLTable const& table, std::uint32_t element,
                                     std::string const& path) {
  PartsCheck check(table, path);
  auto const* const elements = table.elements();
  auto const end = elements[element].end;
  for (auto at = element; at < end;) {
    auto const* const form = formOf(table.nameOf(elements[at]), kSources);
    if (form != nullptr) {
      check.check(at, *form);
    }
    at = form != nullptr ? elements[at].end : at + 1;
  }
  return check.take();
}

}  // namespace mox::cli
