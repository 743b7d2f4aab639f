#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// One function for each reader of foreign bytes. It may be given anything; it aborts when the
/// reader breaks a promise, and lets everything but a moxError out. The fuzz programs and the tests
/// that replay the corpus share these.
namespace mox::fuzz {

void readXml(std::string_view bytes);
void readJson(std::string_view bytes);
void decompress(std::string_view bytes);
void readSettings(std::string_view bytes);
void readDateMask(std::string_view bytes);
void splitStatements(std::string_view bytes);
void rewriteStatement(std::string_view bytes);
void readCollection(std::string_view bytes);
void readDefinition(std::string_view bytes);
void readFilter(std::string_view bytes);
void readExpression(std::string_view bytes);

}  // namespace mox::fuzz
