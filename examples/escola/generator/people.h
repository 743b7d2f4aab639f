#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "escola/generator/random.h"

namespace escola {

/// Given name and one to three surnames, as people in Brazil are called; `family`, when it is not
/// empty, is the last of them.
std::string fullName(Random& random, bool female, std::string_view family = {});

/// The last surname, with the particle that belongs to it: "dos Santos".
std::string_view familyOf(std::string_view name);

/// A registration number of a natural person, "000.000.000-00", with valid check digits. It always
/// starts with "00", and it differs for each `person` from 0 to 9,999,999.
std::string cpf(std::int64_t person);

/// Address in a domain that is kept free for examples: "ana.araujo.17@familia.example".
std::string email(std::string_view name, std::int64_t id, std::string_view domain);

/// A mobile number that is not given out: "(81) 90000-1234".
std::string phone(Random& random, std::string_view areaCode);

/// Street and number, in some cases with a flat.
std::string address(Random& random);

/// A picture of 16 x 16 points, mirrored left to right, as the bytes of a BMP file.
std::string thumbnail(Random& random);

/// `number` with zeros in front up to `width` digits.
std::string padded(std::int64_t number, int width);

}  // namespace escola
