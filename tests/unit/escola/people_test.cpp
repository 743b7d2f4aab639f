#include "escola/generator/people.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using escola::Purpose;
using escola::Random;

/// Check digit by the rule as it is published: weights 2, 3, ... from the right, remainder of
/// eleven.
int publishedDigit(std::string const& digits) {
  int sum = 0;
  for (std::size_t fromRight = 0; fromRight < digits.size(); ++fromRight) {
    sum += (digits[digits.size() - 1 - fromRight] - '0') * static_cast<int>(fromRight + 2);
  }
  return sum * 10 % 11 % 10;
}

std::string digitsOf(std::string const& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](char c) { return c >= '0' && c <= '9'; });
  return digits;
}

TEST(EscolaPeople, CpfCarriesBothCheckDigits) {
  for (int person = 0; person < 20000; person += 7) {
    std::string const digits = digitsOf(escola::cpf(person));
    ASSERT_EQ(digits.size(), 11U);
    EXPECT_EQ(digits[9] - '0', publishedDigit(digits.substr(0, 9))) << digits;
    EXPECT_EQ(digits[10] - '0', publishedDigit(digits.substr(0, 10))) << digits;
  }
}

TEST(EscolaPeople, CpfIsWrittenWithItsPointsAndStartsWithTwoZeros) {
  std::string const text = escola::cpf(123456);
  ASSERT_EQ(text.size(), 14U);
  EXPECT_EQ(text.substr(0, 2), "00");
  EXPECT_EQ(text[3], '.');
  EXPECT_EQ(text[7], '.');
  EXPECT_EQ(text[11], '-');
}

TEST(EscolaPeople, CpfDiffersForEachPerson) {
  std::set<std::string> seen;
  for (int person = 0; person < 50000; ++person) {
    EXPECT_TRUE(seen.insert(escola::cpf(person)).second) << person;
  }
}

TEST(EscolaPeople, EmailIsPlainAsciiOfAnExampleDomain) {
  EXPECT_EQ(escola::email("João Vítor da Conceição", 17, "aluno"),
            "joao.conceicao.17@aluno.example");
  EXPECT_EQ(escola::email("Inês Corrêa Sá", 2, "rede"), "ines.sa.2@rede.example");
}

TEST(EscolaPeople, PhoneIsANumberThatIsNotGivenOut) {
  Random random(1, Purpose::kStudent, 1);
  std::string const text = escola::phone(random, "81");
  EXPECT_EQ(text.size(), 15U);
  EXPECT_EQ(text.substr(0, 11), "(81) 90000-");
}

TEST(EscolaPeople, NamesNeverRepeatASurnameInARow) {
  Random random(1, Purpose::kStudent, 2);
  for (int count = 0; count < 2000; ++count) {
    std::string const name = escola::fullName(random, count % 2 == 0);
    EXPECT_NE(name.find(' '), std::string::npos) << name;
    EXPECT_EQ(name.find("  "), std::string::npos) << name;
  }
}

TEST(EscolaPeople, FamilyIsTheLastSurnameWithItsParticle) {
  EXPECT_EQ(escola::familyOf("Ana Clara Lima dos Santos"), "dos Santos");
  EXPECT_EQ(escola::familyOf("João Pedro Sá"), "Sá");
  Random random(1, Purpose::kStudent, 4);
  EXPECT_EQ(escola::familyOf(escola::fullName(random, true, "da Conceição")), "da Conceição");
}

TEST(EscolaPeople, ThumbnailIsABitmapOfItsDeclaredSize) {
  Random random(1, Purpose::kStudent, 3);
  std::string const bytes = escola::thumbnail(random);
  ASSERT_EQ(bytes.substr(0, 2), "BM");
  auto const number = [&bytes](std::size_t at) {
    return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8;
  };
  EXPECT_EQ(static_cast<std::size_t>(number(2)), bytes.size());
  EXPECT_EQ(number(18), 16);
  EXPECT_EQ(number(22), 16);
  EXPECT_EQ(static_cast<std::size_t>(number(10)), bytes.size() - 128);
}

TEST(EscolaPeople, PaddedKeepsLongNumbersWhole) {
  EXPECT_EQ(escola::padded(7, 3), "007");
  EXPECT_EQ(escola::padded(12345, 3), "12345");
}

}  // namespace
