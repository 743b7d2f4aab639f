#include "core/documents/json_document.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;
using Type = moxJsonValue::Type;

std::shared_ptr<moxJsonValue> parsed(std::string_view text) {
  JsonDocument document;
  document.parse(text);
  return document.root();
}

std::string rewritten(std::string_view text) {
  return parsed(text)->text();
}

std::string failureOf(std::string_view text) {
  return errorMessageOf([&] { parsed(text); });
}

std::string nested(int depth) {
  return std::string(static_cast<std::size_t>(depth), '[') +
         std::string(static_cast<std::size_t>(depth), ']');
}

TEST(JsonDocument, IsNamedAsItIsRegistered) {
  EXPECT_EQ(JsonDocument().name(), "moxJsonDocument");
}

TEST(JsonDocument, IsBornWithAnEmptyObject) {
  JsonDocument const document;
  EXPECT_EQ(document.text(), "{}");
  EXPECT_EQ(document.root()->type(), Type::kObject);
}

TEST(JsonDocument, TypeNumbersArePartOfTheInterface) {
  auto const root = parsed(R"([null,true,1,1.5,"s",{},[]])");
  auto const array = std::dynamic_pointer_cast<moxJsonValueArray>(root);
  int const expected[] = {0, 1, 2, 3, 4, 6, 7};
  for (std::size_t i = 0; i < array->size(); ++i) {
    EXPECT_EQ(static_cast<int>(array->at(i)->type()), expected[i]);
  }
}

TEST(JsonDocument, BuildsAnObjectInTheOrderOfAdding) {
  JsonDocument document;
  auto const root = document.createObject();
  root->addString("type", "bar");
  auto const data = root->addObject("data");
  auto const labels = data->addArray("labels");
  labels->pushString("Janeiro");
  labels->pushInteger(2024);
  labels->pushNumber(1.5);
  labels->pushBool(true);
  labels->pushNull();
  labels->addObject()->addBool("x", false);
  labels->addArray()->pushInteger(-1);
  root->addInteger("a", std::numeric_limits<std::int64_t>::min());
  root->addNumber("b", 0.1);
  root->addNull("c");
  EXPECT_EQ(document.text(),
            R"({"type":"bar","data":{"labels":["Janeiro",2024,1.5,true,null,{"x":false},[-1]]},)"
            R"("a":-9223372036854775808,"b":0.1,"c":null})");
}

TEST(JsonDocument, BuildsAnArray) {
  JsonDocument document;
  auto const outer = document.createArray();
  outer->addArray()->pushString("a");
  outer->addArray()->pushString("b");
  EXPECT_EQ(document.text(), R"([["a"],["b"]])");
  EXPECT_EQ(outer->size(), 2U);
  EXPECT_EQ(outer->at(1)->text(), R"(["b"])");
  EXPECT_THROW(outer->at(2), std::out_of_range);
}

TEST(JsonDocument, ANameAddedAgainReplacesTheValueInItsPlace) {
  JsonDocument document;
  auto const root = document.createObject();
  auto const old = root->addObject("x");
  root->addInteger("y", 1);
  root->addInteger("x", 2);
  EXPECT_EQ(document.text(), R"({"x":2,"y":1})");
  old->addInteger("still", 1);
  EXPECT_EQ(old->text(), R"({"still":1})");
}

TEST(JsonDocument, FindsEachOfManyMembers) {
  JsonDocument document;
  auto const root = document.createObject();
  for (int i = 0; i < 1000; ++i) {
    root->addInteger("m" + std::to_string(i), i);
  }
  root->addInteger("m500", -1);
  EXPECT_EQ(root->size(), 1000U);
  EXPECT_EQ(root->memberName(999), "m999");
  EXPECT_THROW(root->memberName(1000), std::out_of_range);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(root->member("m" + std::to_string(i))->readInt(), i == 500 ? -1 : i);
  }
  EXPECT_EQ(root->member("m1000"), nullptr);
}

TEST(JsonDocument, ValuesOutliveTheDocument) {
  std::shared_ptr<moxJsonValue> inner;
  {
    JsonDocument document;
    document.parse(R"({"a":{"b":"text"}})");
    inner = document.root()->member("a");
    document.parse("[]");
  }
  EXPECT_EQ(inner->member("b")->readString(), "text");
}

TEST(JsonDocument, AMemberOfWhatIsNoObjectIsEmpty) {
  EXPECT_EQ(parsed("[1]")->member("a"), nullptr);
  EXPECT_EQ(parsed("1")->member("a"), nullptr);
  EXPECT_EQ(parsed(R"({"b":1})")->member("a"), nullptr);
}

TEST(JsonDocument, ANumberThatJsonCannotWriteBecomesNull) {
  JsonDocument document;
  auto const array = document.createArray();
  array->pushNumber(std::numeric_limits<double>::quiet_NaN());
  array->pushNumber(std::numeric_limits<double>::infinity());
  array->pushNumber(-std::numeric_limits<double>::infinity());
  EXPECT_EQ(document.text(), "[null,null,null]");
}

TEST(JsonDocument, TextIsEscapedAndStaysUtf8) {
  JsonDocument document;
  document.createObject()->addString("é\"", std::string("\"\\/\b\f\n\r\t\x01\0\x7F"
                                                        "é😀",
                                                        17));
  EXPECT_EQ(document.text(),
            "{\"é\\\"\":\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u0000\x7F"
            "é😀\"}");
}

TEST(JsonDocument, ATextThatIsNotUtf8CannotBeWritten) {
  std::string const expected = "JSON document: a text that is not UTF-8 cannot be written.";
  JsonDocument document;
  document.createObject()->addString("a", "caf\xE9");
  EXPECT_EQ(errorMessageOf([&] { document.text(); }), expected);
  document.createObject()->addNull("caf\xE9");
  EXPECT_EQ(errorMessageOf([&] { document.text(); }), expected);
}

TEST(JsonValue, ReadsTheKindThatItIs) {
  EXPECT_EQ(parsed(R"("text")")->readString(), "text");
  EXPECT_EQ(parsed("42")->readInt(), 42);
  EXPECT_EQ(parsed("-2147483648")->readInt(), std::numeric_limits<int>::min());
  EXPECT_EQ(parsed("2147483647")->readInt(), std::numeric_limits<int>::max());
  EXPECT_EQ(parsed("2.5")->readDouble(), 2.5);
  EXPECT_EQ(parsed("42")->readDouble(), 42.0);
  EXPECT_TRUE(parsed("true")->readBool());
}

TEST(JsonValue, AnotherKindIsAnErrorThatNamesBoth) {
  EXPECT_EQ(errorMessageOf([] { parsed("1")->readString(); }),
            "JSON document: a string is expected, an integer is there.");
  EXPECT_EQ(errorMessageOf([] { parsed(R"("1")")->readInt(); }),
            "JSON document: an integer is expected, a string is there.");
  EXPECT_EQ(errorMessageOf([] { parsed("1.0")->readInt(); }),
            "JSON document: an integer is expected, a number is there.");
  EXPECT_EQ(errorMessageOf([] { parsed("[]")->readDouble(); }),
            "JSON document: a number is expected, an array is there.");
  EXPECT_EQ(errorMessageOf([] { parsed("null")->readBool(); }),
            "JSON document: a bool is expected, null is there.");
  EXPECT_EQ(errorMessageOf([] { parsed("{}")->readInt(); }),
            "JSON document: an integer is expected, an object is there.");
  EXPECT_EQ(errorMessageOf([] { parsed("true")->readInt(); }),
            "JSON document: an integer is expected, a bool is there.");
}

TEST(JsonValue, AnIntegerBeyond32BitsIsNotCut) {
  EXPECT_EQ(errorMessageOf([] { parsed("2147483648")->readInt(); }),
            "JSON document: the integer 2147483648 has more than 32 bits.");
  EXPECT_EQ(errorMessageOf([] { parsed("-2147483649")->readInt(); }),
            "JSON document: the integer -2147483649 has more than 32 bits.");
}

TEST(JsonDocumentParse, KeepsIntegersAndNumbersApart) {
  EXPECT_EQ(rewritten("[9223372036854775807,-9223372036854775808,0,-0,1e2,0.5]"),
            "[9223372036854775807,-9223372036854775808,0,0,100.0,0.5]");
  EXPECT_EQ(parsed("9223372036854775808")->type(), Type::kDouble);
  EXPECT_EQ(parsed("9223372036854775808")->readDouble(), 9223372036854775808.0);
  EXPECT_EQ(parsed("123456789012345678901234567890")->type(), Type::kDouble);
}

TEST(JsonDocumentParse, KeepsTheOrderOfMembersAndTheLastOfTwins) {
  EXPECT_EQ(rewritten(R"({ "z" : 1 , "a" : [ ] , "z" : { "b" : 2 } })"), R"({"z":{"b":2},"a":[]})");
}

TEST(JsonDocumentParse, PassesAByteOrderMark) {
  EXPECT_EQ(rewritten("\xEF\xBB\xBF[1]"), "[1]");
}

TEST(JsonDocumentParse, AFailedReadLeavesTheDocument) {
  JsonDocument document;
  document.parse("[1]");
  EXPECT_NE(errorMessageOf([&] { document.parse("[2"); }), "");
  EXPECT_EQ(document.text(), "[1]");
}

struct Malformed {
  char const* text;
  char const* message;
};

TEST(JsonDocumentParse, WhatIsNoJsonIsRefusedWithItsPlace) {
  for (Malformed const& sample : {
           Malformed{"",
                     "line 1, column 1: syntax error while parsing value - unexpected end of "
                     "input; expected '[', '{', or a literal"},
           Malformed{"{\"é\": tru}",
                     "line 1, column 10: syntax error while parsing value - invalid literal"},
           Malformed{"[1,\n 2\n 3]",
                     "line 3, column 2: syntax error while parsing array - unexpected number "
                     "literal; expected ']'"},
           Malformed{"[1] x",
                     "line 1, column 5: syntax error while parsing value - invalid literal"},
           Malformed{"[1e999]", "line 1, column 6: number overflow parsing '1e999'"},
       }) {
    EXPECT_EQ(failureOf(sample.text), "JSON document, " + std::string(sample.message) + ".")
        << sample.text;
  }
}

TEST(JsonDocumentParse, OtherThingsThatAreNoJson) {
  for (char const* const text :
       {"nul",         "NaN",  "Infinity", "-",         "01",       "1.",
        ".5",          "+1",   "'a'",      "\"a",       "\"\\x\"",  "\"\n\"",
        "\"\\ud800\"", "[1,]", "{,}",      "{\"a\"}",   "{\"a\":}", "{a:1}",
        "[1}",         "]",    "// x\n1",  "\xFF\xFE[", "\"\xC3\"", "\"\xED\xA0\x80\""}) {
    std::string const message = failureOf(text);
    EXPECT_TRUE(message.starts_with("JSON document, line ")) << text << ": " << message;
    EXPECT_EQ(message.find('\n'), std::string::npos);
  }
  EXPECT_NE(failureOf(std::string_view("\"a\0b\"", 5)), "");
}

TEST(JsonDocumentParse, BytesThatAreNotUtf8AreNamedByTheirPlace) {
  EXPECT_EQ(failureOf("{\"a\":\n\"é\xFF\"}"),
            "JSON document, line 2, column 3: the text is not UTF-8.");
}

TEST(JsonDocumentParse, ADocumentCutAtAnyByteIsAnError) {
  std::string const whole = R"({"a":[1,-2.5e3,"t\u00e9\"x",true,false,null,{}],"é":{"b":"c"}})";
  ASSERT_EQ(failureOf(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(failureOf(whole.substr(0, length)), "") << "cut at " << length;
  }
}

TEST(JsonDocumentParse, DepthIsBoundedAt64) {
  EXPECT_EQ(failureOf(nested(64)), "");
  EXPECT_EQ(failureOf(nested(65)),
            "JSON document, line 1, column 65: values are nested deeper than 64.");
  EXPECT_EQ(failureOf("{\"[[\":\"[\\\"[\",\n\"a\":" + nested(64) + "}"),
            "JSON document, line 2, column 68: values are nested deeper than 64.");
}

TEST(JsonDocumentParse, AMillionLevelsAreRefusedLikeAnyOther) {
  std::string const expected =
      "JSON document, line 1, column 65: values are nested deeper than 64.";
  EXPECT_EQ(failureOf(nested(1000000)), expected);
  EXPECT_EQ(failureOf(std::string(1000000, '[')), expected);
  std::string objects;
  for (int i = 0; i < 1000000; ++i) {
    objects += "{\"\":";
  }
  EXPECT_EQ(failureOf(objects),
            "JSON document, line 1, column 257: values are nested deeper than 64.");
}

TEST(JsonDocument, NestingIsBoundedWhereADocumentIsBuilt) {
  JsonDocument document;
  auto array = document.createArray();
  for (int depth = 2; depth <= 64; ++depth) {
    array = array->addArray();
  }
  std::string const expected = "JSON document: values cannot be nested deeper than 64.";
  EXPECT_EQ(errorMessageOf([&] { array->addArray(); }), expected);
  EXPECT_EQ(errorMessageOf([&] { array->addObject(); }), expected);
  array->pushInteger(1);
  EXPECT_EQ(rewritten(document.text()), document.text());
}

TEST(JsonDocumentParse, LengthIsBoundedByTheCaller) {
  JsonDocument document;
  document.parse("[1,2]", 5);
  EXPECT_EQ(errorMessageOf([&] { document.parse("[1,2]", 4); }),
            "JSON document: it is longer than 4 bytes.");
  std::string const blanks(moxJsonDocument::kDefaultMaxBytes, ' ');
  EXPECT_EQ(failureOf(blanks + "1"), "JSON document: it is longer than 16777216 bytes.");
}

TEST(JsonDocumentParse, ValuesAreBoundedAtAMillion) {
  std::string text = "[";
  for (int i = 0; i < 999998; ++i) {
    text += "1,";
  }
  EXPECT_EQ(failureOf(text + "1]"), "");
  EXPECT_EQ(failureOf(text + "1,1]"), "JSON document: it holds more than 1000000 values.");
}

TEST(JsonDocumentParse, ManyMembersTakeNoQuadraticTime) {
  // Were each name looked for in the whole list, this would be five billion comparisons.
  std::string text = "{";
  for (int i = 0; i < 100000; ++i) {
    text += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":1";
  }
  EXPECT_EQ(failureOf(text + "}"), "");
}

/// A random value, as the library would build it.
nlohmann::ordered_json randomValue(std::mt19937& random, int depth) {
  using Json = nlohmann::ordered_json;
  auto const pick = [&](unsigned count) { return random() % count; };
  switch (pick(depth > 0 ? 7 : 5)) {
    case 0:
      return nullptr;
    case 1:
      return pick(2) == 0;
    case 2:
      return static_cast<std::int64_t>(random()) - static_cast<std::int64_t>(random());
    case 3:
      return std::ldexp(static_cast<double>(random()) + 0.5, static_cast<int>(pick(100)) - 50);
    case 4:
      return std::string(pick(5), 'a') + "é\"\\\n\x01";
    case 5: {
      Json object = Json::object();
      for (unsigned i = pick(25); i > 0; --i) {
        object["k" + std::to_string(pick(40))] = randomValue(random, depth - 1);
      }
      return object;
    }
    default: {
      Json array = Json::array();
      for (unsigned i = pick(5); i > 0; --i) {
        array.push_back(randomValue(random, depth - 1));
      }
      return array;
    }
  }
}

TEST(JsonDocumentParse, RandomDocumentsComeBackByteByByte) {
  constexpr unsigned kSeed = 99;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 500; ++round) {
    nlohmann::ordered_json const value = randomValue(random, 4);
    ASSERT_EQ(rewritten(value.dump(2)), value.dump()) << "seed " << kSeed << ", round " << round;
  }
}

}  // namespace
}  // namespace mox::core
