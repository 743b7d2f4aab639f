#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/output/json_writer.h"

namespace mox::cli {

/// A JSON text that is built from its beginning to its end: objects and arrays over lines, two
/// blanks a level. Whoever builds it closes what he opens.
class JsonDocument {
 public:
  void open(char bracket);
  void close(char bracket);

  void key(std::string_view name);
  void text(std::string_view value);
  void number(int value);

  void member(std::string_view name, std::string_view value);
  void member(std::string_view name, char const* value) { member(name, std::string_view(value)); }
  void member(std::string_view name, bool value);
  void member(std::string_view name, int value);

  /// The text, with a line end. Called last.
  std::string take();

 private:
  class TextSink : public ByteSink {
   public:
    void write(std::string_view bytes) override { text += bytes; }

    std::string text;
  };

  /// A value behind its key stands in the key's line.
  void separate();
  void newLine();

  TextSink sink_;
  OutputBuffer out_{sink_};
  int level_ = 0;
  bool isFirst_ = true;
  bool hasKey_ = false;
};

}  // namespace mox::cli
