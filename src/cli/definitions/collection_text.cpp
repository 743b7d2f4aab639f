#include "cli/definitions/collection_text.h"

#include <algorithm>

#include <fmt/format.h>

namespace mox::cli {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

enum class Markup { kOpening, kClosing, kWhole, kOther };

/// Steps through the tags of a well-formed text, over comments, CDATA and processing instructions.
class Tags {
 public:
  explicit Tags(std::string_view text) : text_(text) {}

  /// False at the end of the text.
  bool next() {
    begin_ = text_.find('<', end_);
    if (begin_ == std::string_view::npos) {
      return false;
    }
    std::string_view const rest = text_.substr(begin_);
    if (rest.starts_with("<!--")) {
      return other("-->");
    }
    if (rest.starts_with("<![CDATA[")) {
      return other("]]>");
    }
    if (rest.starts_with("<?")) {
      return other("?>");
    }
    end_ = endOfTag();
    markup_ = rest.starts_with("</")   ? Markup::kClosing
              : text_[end_ - 2] == '/' ? Markup::kWhole
                                       : Markup::kOpening;
    return true;
  }

  Markup markup() const { return markup_; }
  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }

 private:
  bool other(std::string_view closing) {
    constexpr std::size_t kLongestOpening = 4;  // so that "<!-->" does not close itself
    std::size_t const from = begin_ + std::min(kLongestOpening, closing.size() + 1);
    end_ = std::min(text_.find(closing, from), text_.size() - closing.size()) + closing.size();
    markup_ = Markup::kOther;
    return true;
  }

  /// A ">" between quotes belongs to an attribute.
  std::size_t endOfTag() const {
    char quote = '\0';
    for (std::size_t at = begin_; at < text_.size(); ++at) {
      char const c = text_[at];
      if (quote != '\0') {
        quote = c == quote ? '\0' : quote;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '>') {
        return at + 1;
      }
    }
    return text_.size();
  }

  std::string_view text_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  Markup markup_ = Markup::kOther;
};

/// Without the white space around it, but for the indent of its first line.
std::string_view trimmed(std::string_view content) {
  auto const first = content.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  auto const last = content.find_last_not_of(kBlanks);
  auto const lineEnd = content.substr(0, first).find_last_of('\n');
  auto const begin = lineEnd == std::string_view::npos ? first : lineEnd + 1;
  return content.substr(begin, last + 1 - begin);
}

/// As the value of an attribute in double quotes.
std::string escaped(std::string_view value) {
  std::string text;
  for (char const c : value) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || c == '&' || c == '<' || c == '>' || c == '"') {
      text += fmt::format("&#{};", byte);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string_view contentOfRoot(std::string_view text) {
  Tags tags(text);
  std::size_t begin = 0;
  for (int depth = 0; tags.next();) {
    bool const isRoot = depth == 0;
    if (tags.markup() == Markup::kWhole && isRoot) {
      return {};
    }
    if (tags.markup() == Markup::kOpening) {
      begin = isRoot ? tags.end() : begin;
      ++depth;
    } else if (tags.markup() == Markup::kClosing && --depth == 0) {
      return text.substr(begin, tags.begin() - begin);
    }
  }
  return {};
}

std::string mergedCollection(std::string_view library, std::vector<std::string> const& documents) {
  std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                     "\n<moxZYNCollection parentLibraryName=\"" +
                     escaped(library) + "\">\n";
  for (auto const& document : documents) {
    auto const content = trimmed(contentOfRoot(document));
    text += content;
    text += content.empty() ? "" : "\n";
  }
  return text + "</moxZYNCollection>\n";
}

}  // namespace mox::cli
