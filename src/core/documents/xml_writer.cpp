#include "core/documents/xml_writer.h"

#include <string>
#include <string_view>
#include <utility>

#include "core/documents/xml_names.h"

namespace mox::core {

namespace {

bool isText(pugi::xml_node node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20;
}

/// Recursion is bounded: no document can be built or read deeper than kMaxXmlDepth.
class Writer {
 public:
  explicit Writer(bool indent) : indent_(indent) {}

  void declaration() {
    out_ += R"(<?xml version="1.0" encoding="UTF-8"?>)";
    endLine(indent_);
  }

  /// `inLines`: the element stands on a line of its own.
  void element(pugi::xml_node node, int level, bool inLines) {
    startLine(inLines, level);
    out_ += '<';
    out_ += node.name();
    for (pugi::xml_attribute const attribute : node.attributes()) {
      writeAttribute(attribute);
    }
    if (!node.first_child()) {
      out_ += "/>";
    } else {
      out_ += '>';
      content(node, level, inLines);
      out_ += "</";
      out_ += node.name();
      out_ += '>';
    }
    endLine(inLines);
  }

  std::string take() { return std::move(out_); }

 private:
  void content(pugi::xml_node node, int level, bool inLines) {
    // White space of ours beside a text would become part of it.
    bool childrenInLines = inLines;
    for (pugi::xml_node const child : node.children()) {
      childrenInLines = childrenInLines && !isText(child);
    }
    endLine(childrenInLines);
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
      if (isText(child)) {
        child = textRun(child);
      } else {
        element(child, level + 1, childrenInLines);
      }
    }
    startLine(childrenInLines, level);
  }

  /// Texts side by side, as a comment or a CDATA section leaves them, are one text to the next
  /// reader and so are written as one. Gives the last of them.
  pugi::xml_node textRun(pugi::xml_node first) {
    pugi::xml_node last = first;
    std::string joined;
    while (isText(last.next_sibling())) {
      joined += last.value();
      last = last.next_sibling();
    }
    if (joined.empty()) {
      text(last.value());
    } else {
      text(joined + last.value());
    }
    return last;
  }

  void writeAttribute(pugi::xml_attribute attribute) {
    out_ += ' ';
    out_ += attribute.name();
    out_ += "=\"";
    // White space is written as references: a reader turns plain line ends and tabs into blanks.
    escaped(attribute.value(), [](char c) { return isControl(c) || c == '"'; });
    out_ += '"';
  }

  void text(std::string_view value) {
    if (!value.empty() && isXmlSpace(value)) {
      // Plain, it could be taken for layout.
      reference(value.front());
      value.remove_prefix(1);
    }
    // A reader turns a plain CR into LF.
    escaped(value, [](char c) { return isControl(c) && c != '\n' && c != '\t'; });
  }

  /// Runs of plain characters, which is nearly all there is, are copied at once.
  template <class NeedsReference>
  void escaped(std::string_view value, NeedsReference needsReference) {
    std::size_t plain = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
      char const c = value[i];
      if (c == '&' || c == '<' || c == '>' || needsReference(c)) {
        out_.append(value.substr(plain, i - plain));
        special(c);
        plain = i + 1;
      }
    }
    out_.append(value.substr(plain));
  }

  void special(char c) {
    switch (c) {
      case '&':
        out_ += "&amp;";
        break;
      case '<':
        out_ += "&lt;";
        break;
      case '>':
        out_ += "&gt;";
        break;
      case '"':
        out_ += "&quot;";
        break;
      default:
        reference(c);
    }
  }

  void reference(char c) {
    out_ += "&#";
    out_ += std::to_string(static_cast<int>(c));
    out_ += ';';
  }

  void startLine(bool inLines, int level) {
    if (inLines) {
      out_.append(static_cast<std::size_t>(level) * 2, ' ');
    }
  }

  void endLine(bool inLines) {
    if (inLines) {
      out_ += '\n';
    }
  }

  std::string out_;
  bool indent_;
};

}  // namespace

std::string writeXml(pugi::xml_node root, bool indent, bool declaration) {
  Writer writer(indent);
  if (declaration) {
    writer.declaration();
  }
  writer.element(root, 0, indent);
  return writer.take();
}

}  // namespace mox::core
