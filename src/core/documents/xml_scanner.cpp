#include "core/documents/xml_scanner.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/documents/document_error.h"
#include "core/documents/utf8.h"
#include "core/documents/xml_bytes.h"
#include "core/documents/xml_names.h"

namespace mox::core {

namespace {

constexpr std::size_t kNowhere = std::string_view::npos;

/// Names may be as long as the document; messages show their beginning.
std::string shown(std::string_view name) {
  constexpr std::size_t kShown = 60;
  if (name.size() <= kShown) {
    return std::string(name);
  }
  std::size_t length = kShown;
  while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) {
    --length;
  }
  return std::string(name.substr(0, length)) + "...";
}

/// The names of one tag's attributes: a plain list while they are few, as they nearly always are.
class AttributeNames {
 public:
  void clear() {
    few_.clear();
    many_.clear();
    kinds_ = 0;
  }

  /// False when the name is there already.
  bool add(std::string_view name) {
    if (few_.size() < kFew) {
      bool const isNew = isFirstOfKind(name) ||
                         std::none_of(few_.begin(), few_.end(), [&](std::string_view other) {
                           return xml_bytes::isSame(other, name);
                         });
      few_.push_back(name);
      return isNew;
    }
    if (many_.empty()) {
      many_.insert(few_.begin(), few_.end());
    }
    return many_.insert(name).second;
  }

 private:
  static constexpr std::size_t kFew = 16;

  /// Whether no name so far has the length and the last character of this one: so most are known
  /// to be new without a look at the others. None is empty.
  bool isFirstOfKind(std::string_view name) {
    std::size_t const kind = (name.size() * 5 + static_cast<unsigned char>(name.back())) % 64;
    bool const isFirst = (kinds_ >> kind & 1U) == 0;
    kinds_ |= std::uint64_t{1} << kind;
    return isFirst;
  }

  std::uint64_t kinds_ = 0;  // a bit for each
  std::vector<std::string_view> few_;
  std::unordered_set<std::string_view> many_;
};

class Scanner {
 public:
  /// `pieces`, where there is one, is handed the table piece by piece.
  explicit Scanner(XmlTable& table, moxXMLPieces::Visit const* pieces = nullptr)
      : text_(table.text()), table_(table), pieces_(pieces) {}

  /// Whether there was nothing that only the parser judges. Who takes pieces has no use for more
  /// once there was.
  bool run() {
    checkCharacters();
    while (at_ < text_.size()) {
      checkText();
      if (at_ < text_.size()) {
        markup();
      }
      if (needsParser_ && pieces_ != nullptr) {
        return false;
      }
    }
    if (!open_.empty()) {
      fail(open_.back().at, "the element <" + shown(open_.back().name) + "> is never closed");
    }
    if (!hasRoot_) {
      fail(text_.size(), "there is no root element");
    }
    table_.finish();
    return !needsParser_;
  }

 private:
  struct OpenElement {
    std::string_view name;
    std::size_t at;  // of its "<"
    std::uint32_t number;
  };

  [[noreturn]] void fail(std::size_t at, std::string const& what) const {
    throw DocumentError("XML", positionAt(text_, at), what);
  }

  bool starts(std::string_view with) const { return text_.substr(at_).starts_with(with); }

  char current() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  /// A text that is wrong in its encoding is told so, wherever it also holds a control character.
  void checkCharacters() const {
    if (text_.size() > kMaxXmlBytes) {
      throw DocumentError("XML", "it is longer than " + std::to_string(kMaxXmlBytes) + " bytes");
    }
    std::size_t control = kNowhere;
    std::size_t at = xml_bytes::endOfAscii(text_, 0);
    while (at < text_.size()) {
      std::size_t const length = utf8Length(text_.substr(at));
      if (length == 0) {
        fail(at, "the text is not valid in its encoding");
      }
      control = length == 1 ? std::min(control, at) : control;
      at = xml_bytes::endOfAscii(text_, at + length);
    }
    if (control != kNowhere) {
      fail(control, "control characters are not allowed");
    }
  }

  std::size_t behindSpace(std::size_t at) const {
    while (at < text_.size() && isXmlSpace(text_[at])) {
      ++at;
    }
    return at;
  }

  /// Passes the text up to the next tag. Most is blank.
  void checkText() {
    std::size_t const at = behindSpace(at_);
    bool const isBlank = at == text_.size() || text_[at] == '<';
    std::size_t const end = isBlank ? at : std::min(text_.find('<', at), text_.size());
    checkText(at, end, isBlank);
    at_ = end;
  }

  /// The text from here to `end`; `at` is its first character that is not blank.
  void checkText(std::size_t at, std::size_t end, bool isBlank) {
    if (!isBlank && open_.empty()) {
      fail(at, "there is text outside the root element");
    }
    if (!isBlank) {
      checkReferences(at, end);
    }
    bool const isText = !isBlank || (end + 1 < text_.size() && text_[end + 1] == '/');
    if (isText && at_ < end && !open_.empty()) {
      table_.text(open_.back().number, text_.substr(at_, end - at_), isBlank);
    }
  }

  void checkReferences(std::size_t from, std::size_t to) const {
    std::string_view const piece = text_.substr(0, to);
    for (std::size_t at = piece.find('&', from); at != kNowhere; at = piece.find('&', at + 1)) {
      checkReference(at, piece.substr(at + 1));
    }
  }

  /// `rest` is what follows the "&" that stands at `at`.
  void checkReference(std::size_t at, std::string_view rest) const {
    for (std::string_view const known : {"amp;", "lt;", "gt;", "quot;", "apos;"}) {
      if (rest.starts_with(known)) {
        return;
      }
    }
    if (!rest.starts_with("#")) {
      fail(at, "entities are not allowed; a plain \"&\" is written &amp;");
    }
    bool const hexadecimal = rest.starts_with("#x");
    if (!namesCharacter(rest.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10)) {
      fail(at, "the character reference names no character");
    }
  }

  /// Digits, then ";", for a character that a text can hold. Control characters are let pass: only
  /// so can a value have them.
  static bool namesCharacter(std::string_view digits, std::uint32_t base) {
    constexpr std::uint32_t kBeyond = 0x110000;
    std::uint32_t number = 0;
    std::size_t i = 0;
    for (; i < digits.size(); ++i) {
      int const digit = digitOf(digits[i]);
      if (digit < 0 || static_cast<std::uint32_t>(digit) >= base) {
        break;
      }
      number = std::min(kBeyond, number * base + static_cast<std::uint32_t>(digit));
    }
    bool const surrogate = number >= 0xD800 && number < 0xE000;
    return i > 0 && i < digits.size() && digits[i] == ';' && number > 0 && number < kBeyond &&
           !surrogate;
  }

  static int digitOf(char c) {
    if (c >= '0' && c <= '9') {
      return c - '0';
    }
    char const lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
  }

  void markup() {
    char const second = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
    if (second != '!' && second != '?' && second != '/') {
      startTag();
    } else if (second == '/') {
      endTag();
    } else if (starts("<!--")) {
      mixText();
      skipPast("<!--", "-->", "the comment never ends");
    } else if (starts("<![CDATA[") && !open_.empty()) {
      mixText();
      skipPast("<![CDATA[", "]]>", "the CDATA section never ends");
    } else if (starts("<?")) {
      needsParser_ = needsParser_ || at_ != 0 || !starts("<?xml ");
      skipPast("<?", "?>", "the processing instruction never ends");
    } else if (starts("<!DOCTYPE")) {
      fail(at_, "a DOCTYPE is not allowed");
    } else {
      fail(at_, "\"<!\" is not expected here");
    }
  }

  void mixText() {
    if (!open_.empty()) {
      table_.mix(open_.back().number);
    }
  }

  void skipPast(std::string_view opening, std::string_view closing, char const* complaint) {
    std::size_t const end = text_.find(closing, at_ + opening.size());
    if (end == kNowhere) {
      fail(at_, complaint);
    }
    at_ = end + closing.size();
  }

  void skipSpace() { at_ = behindSpace(at_); }

  std::string_view takeName(char const* complaint) {
    std::size_t const start = at_;
    if (!startsXmlName(current())) {
      fail(start, complaint);
    }
    at_ = xml_bytes::endOfName(text_, start + 1);
    return std::string_view(text_.data() + start, at_ - start);
  }

  void countPart(std::size_t at) {
    if (++parts_ > kMaxXmlParts) {
      fail(at, "there are more than " + std::to_string(kMaxXmlParts) + " elements and attributes");
    }
  }

  void startTag() {
    std::size_t const start = at_++;
    std::string_view const name = takeName("an element name is expected behind \"<\"");
    if (open_.empty() && hasRoot_) {
      fail(start, "there is more than one root element");
    }
    if (open_.size() >= static_cast<std::size_t>(kMaxXmlDepth)) {
      fail(start, "elements are nested deeper than " + std::to_string(kMaxXmlDepth));
    }
    countPart(start);
    hasRoot_ = true;
    auto const number = table_.open(start + 1, name.size(), open_.size() + 1);
    bool const closesItself = attributes(start);
    if (open_.empty()) {
      handOut(number);
    }
    if (closesItself) {
      close(number);
    } else {
      open_.push_back({name, start, number});
    }
  }

  /// An element with the end of its tags behind it.
  void close(std::uint32_t number) {
    table_.close(number, at_);
    if (open_.size() == 1) {
      handOut(number);
    }
  }

  /// The root, or a child of the root.
  void handOut(std::uint32_t number) {
    if (pieces_ != nullptr) {
      table_.finish();
      (*pieces_)(table_, number);
      table_.keepRoot();
    }
  }

  /// Up to and with the end of the tag that began at `start`; whether that was "/>".
  bool attributes(std::size_t start) {
    names_.clear();
    for (;;) {
      std::size_t const before = at_;
      skipSpace();
      if (at_ == text_.size()) {
        fail(start, "the tag never ends");
      }
      if (text_[at_] == '>') {
        ++at_;
        return false;
      }
      if (text_[at_] == '/' && starts("/>")) {
        at_ += 2;
        return true;
      }
      if (at_ == before) {
        fail(at_, "white space, \">\" or \"/>\" is expected here");
      }
      attribute();
    }
  }

  void attribute() {
    std::size_t const start = at_;
    std::string_view const name = takeName("an attribute name is expected here");
    if (!names_.add(name)) {
      fail(start, "the attribute \"" + shown(name) + "\" is written twice");
    }
    countPart(start);
    skipSpace();
    if (current() != '=') {
      fail(at_, "\"=\" is expected behind the attribute name");
    }
    ++at_;
    skipSpace();
    attributeValue(start, name.size());
  }

  void attributeValue(std::size_t nameAt, std::size_t nameSize) {
    char const quote = current();
    if (quote != '"' && quote != '\'') {
      fail(at_, "the attribute's value must stand in quotes");
    }
    std::size_t const start = at_ + 1;
    bool isPlain = true;
    std::size_t const end = xml_bytes::endOfValue(text_, start, quote, isPlain);
    if (end == text_.size()) {
      fail(at_, "the attribute's value never ends");
    }
    if (!isPlain) {
      checkMarksInValue(start, end);
    }
    table_.attribute(nameAt, nameSize, std::string_view(text_.data() + start, end - start),
                     isPlain);
    at_ = end + 1;
  }

  void checkMarksInValue(std::size_t start, std::size_t end) const {
    std::size_t const tag = text_.substr(0, end).find('<', start);
    if (tag != kNowhere) {
      fail(tag, "\"<\" is not allowed in an attribute's value; it is written &lt;");
    }
    checkReferences(start, end);
  }

  void endTag() {
    std::size_t const start = at_;
    at_ += 2;
    std::string_view const name = takeName("an element name is expected behind \"</\"");
    skipSpace();
    if (current() != '>') {
      fail(at_, "\">\" is expected here");
    }
    ++at_;
    if (open_.empty()) {
      fail(start, "</" + shown(name) + "> closes no element");
    }
    if (!xml_bytes::isSame(open_.back().name, name)) {
      failMismatch(start, name);
    }
    auto const number = open_.back().number;
    open_.pop_back();
    close(number);
  }

  [[noreturn]] void failMismatch(std::size_t at, std::string_view name) const {
    OpenElement const& opened = open_.back();
    fail(at, "</" + shown(name) + "> is found where </" + shown(opened.name) +
                 "> is expected, for the element opened in line " +
                 std::to_string(positionAt(text_, opened.at).line));
  }

  std::string_view text_;
  XmlTable& table_;
  moxXMLPieces::Visit const* const pieces_;
  std::size_t at_ = 0;
  std::size_t parts_ = 0;
  bool hasRoot_ = false;
  bool needsParser_ = false;
  std::vector<OpenElement> open_;
  AttributeNames names_;
};

}  // namespace

ScannedXml scanXml(std::string text) {
  auto table = std::make_shared<XmlTable>(std::move(text));
  bool const isEnough = Scanner(*table).run();
  return {std::move(table), !isEnough};
}

bool scanXmlPieces(std::string_view text, moxXMLPieces::Visit const& visit) {
  auto const table = XmlTable::ofPieces(text);
  return Scanner(*table, &visit).run();
}

}  // namespace mox::core
