#include "cli/output/json_writer.h"

#include <array>
#include <cmath>
#include <set>

#include "cli/output/column_visit.h"
#include "cli/output/utf8.h"
#include "cli/output/value_text.h"

namespace mox::cli {

namespace {

using CellWriter = std::function<void(OutputBuffer& out, unsigned int row)>;

constexpr std::string_view kNull = "null";

/// ASCII that stands as it is inside a string.
bool isPlain(char character) {
  return character >= 0x20 && character != 0x7F && character != '"' && character != '\\';
}

std::size_t plainLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && isPlain(text[length])) {
    ++length;
  }
  return length;
}

void writeEscape(OutputBuffer& out, char32_t character) {
  constexpr std::string_view kHex = "0123456789abcdef";
  constexpr std::string_view kShortFrom = "\"\\\b\f\n\r\t";
  constexpr std::string_view kShortTo = "\"\\bfnrt";
  out.append('\\');
  if (auto const place = kShortFrom.find(static_cast<char>(character)); place != kShortFrom.npos) {
    out.append(kShortTo[place]);
    return;
  }
  out.append("u00");
  out.append(kHex[character >> 4 & 0xF]);
  out.append(kHex[character & 0xF]);
}

/// Writes the character that text starts with, and gives its length. The control characters past
/// ASCII are written as escapes too, because some terminals obey them.
std::size_t writeSpecial(OutputBuffer& out, std::string_view text) {
  auto const character = decodeUtf8(text, 0);
  if (!character.valid) {
    out.append(kReplacement);
  } else if (character.codePoint < 0xA0) {
    writeEscape(out, character.codePoint);
  } else {
    out.append(text.substr(0, character.length));
  }
  return character.length;
}

/// One overload a kind of column; nulls are written before these are asked.
struct CellWriterMaker {
  CellWriter operator()(moxDataMatrixTypedColumn<int> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) { out.appendInt(column.getValue(row)); };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<double> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) {
      double const value = column.getValue(row);
      if (std::isfinite(value)) {
        out.appendDouble(value);
      } else {
        out.append(kNull);
      }
    };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<std::string> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) {
      writeJsonText(out, column.getValue(row));
    };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<datetime_t> const& column) const {
    return [&column, withTime = hasTimes(column)](OutputBuffer& out, unsigned int row) {
      datetime_t const moment = column.getValue(row);
      if (moment) {
        writeJsonText(out, formatMoment(moment, withTime));
      } else {
        out.append(kNull);
      }
    };
  }

  CellWriter operator()(
      moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) {
      auto const blob = column.getValue(row);
      if (blob) {
        writeJsonText(out, base64(bytesOf(blob)));
      } else {
        out.append(kNull);
      }
    };
  }
};

/// Collects what it is given, so that a key is escaped once and not in every row.
class TextSink : public ByteSink {
 public:
  void write(std::string_view bytes) override { text += bytes; }

  std::string text;
};

/// Writes rows as objects. The keys, with their quotes and colons, are made once.
class ObjectWriter {
 public:
  explicit ObjectWriter(ResultTable const& table) : table_(table) {
    std::vector<std::string> names;
    for (auto const& column : table.columns) {
      names.push_back(column->getName());
      cells_.push_back(visitColumn(*column, CellWriterMaker{}));
    }
    for (auto const& name : distinctNames(names)) {
      keys_.push_back(keyText(name, keys_.empty()));
    }
  }

  void write(OutputBuffer& out, unsigned int row) const {
    out.append('{');
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      out.append(keys_[i]);
      if (table_.columns[i]->isNull(row)) {
        out.append(kNull);
      } else {
        cells_[i](out, row);
      }
    }
    out.append('}');
    table_.rowWritten(row);
  }

 private:
  static std::string keyText(std::string const& name, bool isFirst) {
    TextSink sink;
    OutputBuffer out(sink);
    out.append(isFirst ? "" : ",");
    writeJsonText(out, name);
    out.append(':');
    out.flush();
    return sink.text;
  }

  ResultTable const& table_;
  std::vector<CellWriter> cells_;
  std::vector<std::string> keys_;
};

}  // namespace

void writeJson(OutputBuffer& out, ResultTable const& table) {
  ObjectWriter const writer(table);
  out.append('[');
  for (unsigned int row = table.firstRow; row < table.endRow(); ++row) {
    out.append(row == table.firstRow ? "\n" : ",\n");
    writer.write(out, row);
  }
  out.append(table.rowCount == 0 ? "]\n" : "\n]\n");
}

void writeNdjson(OutputBuffer& out, ResultTable const& table) {
  ObjectWriter const writer(table);
  for (unsigned int row = table.firstRow; row < table.endRow(); ++row) {
    writer.write(out, row);
    out.append('\n');
  }
}

void writeJsonText(OutputBuffer& out, std::string_view text) {
  out.append('"');
  while (!text.empty()) {
    std::size_t const plain = plainLength(text);
    out.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) {
      text.remove_prefix(writeSpecial(out, text));
    }
  }
  out.append('"');
}

std::vector<std::string> distinctNames(std::vector<std::string> const& names) {
  std::set<std::string> taken(names.begin(), names.end());
  std::set<std::string> seen;
  std::vector<std::string> distinct;
  for (auto const& name : names) {
    std::string candidate = name;
    for (int number = 2; !seen.insert(candidate).second; ++number) {
      candidate = name + "_" + std::to_string(number);
      while (taken.contains(candidate)) {
        candidate = name + "_" + std::to_string(++number);
      }
    }
    distinct.push_back(candidate);
  }
  return distinct;
}

}  // namespace mox::cli
