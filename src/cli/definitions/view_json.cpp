#include "cli/definitions/view_json.h"
#include "cli/output/json_writer.h"

namespace mox::cli {

namespace {

class TextSink : public ByteSink {
 public:
  void write(std::string_view bytes) override { text += bytes; }

  std::string text;
};

/// Objects and arrays over lines, two blanks a level.
class Writer {
 public:
  void open(char bracket) {
    separate();
    out_.append(bracket);
    ++level_;
    isFirst_ = true;
  }

  void close(char bracket) {
    --level_;
    if (!isFirst_) {
      newLine();
    }
    out_.append(bracket);
    isFirst_ = false;
  }

  void key(std::string_view name) {
    separate();
    writeJsonText(out_, name);
    out_.append(": ");
    hasKey_ = true;
  }

  void text(std::string_view value) {
    separate();
    writeJsonText(out_, value);
  }

  void member(std::string_view name, std::string_view value) {
    key(name);
    text(value);
  }

  void member(std::string_view name, bool value) {
    key(name);
    separate();
    out_.append(value ? "true" : "false");
  }

  std::string take() {
    out_.append('\n');
    out_.flush();
    return std::move(sink_.text);
  }

 private:
  /// A value behind its key stands in the key's line.
  void separate() {
    if (!hasKey_ && level_ > 0) {
      out_.append(isFirst_ ? "" : ",");
      newLine();
    }
    isFirst_ = false;
    hasKey_ = false;
  }

  void newLine() {
    out_.append('\n');
    out_.pad(2 * level_);
  }

  TextSink sink_;
  OutputBuffer out_{sink_};
  int level_ = 0;
  bool isFirst_ = true;
  bool hasKey_ = false;
};

void write(Writer& out, std::string const& text) {
  out.text(text);
}

void write(Writer& out, ColumnView const& column);
void write(Writer& out, FilterView const& filter);
void write(Writer& out, OrderView const& order);
void write(Writer& out, RelationView const& relation);
void write(Writer& out, DependencyView const& dependency);

template <class T>
void writeList(Writer& out, std::string_view name, std::vector<T> const& list) {
  out.key(name);
  out.open('[');
  for (auto const& element : list) {
    write(out, element);
  }
  out.close(']');
}

void write(Writer& out, ColumnView const& column) {
  out.open('{');
  out.member("name", column.name);
  out.member("type", column.type);
  out.member("heading", column.heading);
  out.member("origin", column.origin);
  out.member("expression", column.expression);
  out.member("formatter", column.formatter);
  out.member("visible", column.visible);
  writeList(out, "roles", column.roles);
  out.close('}');
}

void write(Writer& out, FilterView const& filter) {
  out.open('{');
  out.member("kind", filter.kind);
  out.member("column", filter.column);
  out.member("description", filter.description);
  out.member("required", filter.required);
  out.member("control", filter.control);
  out.close('}');
}

void write(Writer& out, OrderView const& order) {
  out.open('{');
  out.member("column", order.column);
  out.member("descending", order.descending);
  out.close('}');
}

void write(Writer& out, RelationView const& relation) {
  out.open('{');
  out.member("column", relation.column);
  out.member("source", relation.source);
  out.member("source_column", relation.sourceColumn);
  out.close('}');
}

void write(Writer& out, DependencyView const& dependency) {
  out.open('{');
  out.member("name", dependency.name);
  out.member("class", dependency.className);
  out.member("repeated", dependency.repeated);
  writeList(out, "reads", dependency.dependencies);
  out.close('}');
}

/// A list, since a name may be there several times.
void writeSettings(Writer& out, DefinitionView const& view) {
  out.key("settings");
  out.open('[');
  for (auto const& [name, value] : view.settings) {
    out.open('{');
    out.member("name", name);
    out.member("value", value);
    out.close('}');
  }
  out.close(']');
}

}  // namespace

std::string jsonText(DefinitionView const& view) {
  Writer out;
  out.open('{');
  out.member("name", view.name);
  out.member("kind", view.kind);
  out.member("class", view.className);
  out.member("library", view.library);
  writeSettings(out, view);
  writeList(out, "columns", view.columns);
  writeList(out, "filters", view.filters);
  writeList(out, "order", view.order);
  writeList(out, "relations", view.relations);
  writeList(out, "reads", view.dependencies);
  out.close('}');
  return out.take();
}

}  // namespace mox::cli
