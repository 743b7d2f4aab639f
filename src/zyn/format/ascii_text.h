#pragma once

#include <string>

/// Puts plain letters in the place of accented ones, by the table of the text filter. Each hit
/// takes two bytes of the text away, whatever the length of what was found: "@", "&" and "$" take
/// their neighbour with them, and a letter of three bytes leaves its last one behind.
void replaceAccents(std::string& text);

/// Removes every byte that is no letter of the alphabet, no digit and no blank.
void keepLettersDigitsAndBlanks(std::string& text);

/// Removes white space at both ends, by the C library's isspace.
void trimSpace(std::string& text);

/// Upper case byte by byte, by the C library's toupper: accented letters keep their case.
void toUpperBytes(std::string& text);
