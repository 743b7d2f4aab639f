#include "cli/definitions/json_document.h"

namespace mox::cli {

void JsonDocument::open(char bracket) {
  separate();
  out_.append(bracket);
  ++level_;
  isFirst_ = true;
}

void JsonDocument::close(char bracket) {
  --level_;
  if (!isFirst_) {
    newLine();
  }
  out_.append(bracket);
  isFirst_ = false;
}

void JsonDocument::key(std::string_view name) {
  separate();
  writeJsonText(out_, name);
  out_.append(": ");
  hasKey_ = true;
}

void JsonDocument::text(std::string_view value) {
  separate();
  writeJsonText(out_, value);
}

void JsonDocument::number(int value) {
  separate();
  out_.appendInt(value);
}

void JsonDocument::member(std::string_view name, std::string_view value) {
  key(name);
  text(value);
}

void JsonDocument::member(std::string_view name, bool value) {
  key(name);
  separate();
  out_.append(value ? "true" : "false");
}

void JsonDocument::member(std::string_view name, int value) {
  key(name);
  number(value);
}

std::string JsonDocument::take() {
  out_.append('\n');
  out_.flush();
  return std::move(sink_.text);
}

void JsonDocument::separate() {
  if (!hasKey_ && level_ > 0) {
    out_.append(isFirst_ ? "" : ",");
    newLine();
  }
  isFirst_ = false;
  hasKey_ = false;
}

void JsonDocument::newLine() {
  out_.append('\n');
  out_.pad(2 * level_);
}

}  // namespace mox::cli
