#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <toml++/toml.h>

#include "core/app/settings.h"
#include "core/app/settings_schema.h"
#include "core/app/settings_text.h"
#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr std::size_t kLargestFile = std::size_t{1024} * 1024;

constexpr std::size_t kLongestMessage = 500;

// A message is one line, whatever names the file holds.
std::string asOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
      },
      '?');
  return text.size() <= kLongestMessage ? text : text.substr(0, kLongestMessage) + "...";
}

[[noreturn]] void failAt(std::filesystem::path const& file, std::size_t line,
                         std::string const& what) {
  throw moxDefaultErrorImpl<moxError>(
      fmt::format("{}:{}: {}", file.string(), line, asOneLine(what)));
}

std::string readWhole(std::filesystem::path const& file) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const stream(std::fopen(file.c_str(), "rb"),
                                                               &std::fclose);
  std::string text(stream != nullptr ? kLargestFile + 1 : 0, '\0');
  errno = stream != nullptr ? 0 : errno;
  std::size_t const count =
      stream != nullptr ? std::fread(text.data(), 1, text.size(), stream.get()) : 0;
  if (stream == nullptr || std::ferror(stream.get()) != 0) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("settings file '{}' cannot be read: {}", file.string(), std::strerror(errno)));
  }
  if (count > kLargestFile) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("settings file '{}' is larger than {} bytes; is it the right file?",
                    file.string(), kLargestFile));
  }
  text.resize(count);
  return text;
}

// What TOML calls the value, as a message tells it.
std::string_view describeNode(toml::node const& node) {
  switch (node.type()) {
    case toml::node_type::table:
      return "a table";
    case toml::node_type::array:
      return "a list";
    case toml::node_type::string:
      return "a text";
    case toml::node_type::integer:
      return "a whole number";
    case toml::node_type::floating_point:
      return "a number with decimals";
    case toml::node_type::boolean:
      return "true or false";
    default:
      return "a date or time";
  }
}

// The shape of a list's elements; a shape that is no list is its own.
SettingShape elementShape(SettingShape shape) {
  switch (shape) {
    case SettingShape::kTextList:
      return SettingShape::kText;
    case SettingShape::kPathList:
      return SettingShape::kPath;
    case SettingShape::kIntegerList:
      return SettingShape::kInteger;
    default:
      return shape;
  }
}

// A single value as text; nothing for one of another shape.
std::optional<std::string> textOf(toml::node const& node, SettingShape shape) {
  bool const isText = shape == SettingShape::kText || shape == SettingShape::kPath;
  if (auto const* const text = node.as_string(); text != nullptr && isText) {
    return text->get();
  }
  if (auto const* const number = node.as_integer();
      number != nullptr && shape == SettingShape::kInteger) {
    return fmt::format("{}", number->get());
  }
  if (auto const* const flag = node.as_boolean();
      flag != nullptr && shape == SettingShape::kBoolean) {
    return flag->get() ? "true" : "false";
  }
  return std::nullopt;
}

template <class Named>
std::string suggest(std::string_view name, std::vector<Named> const& known) {
  std::vector<std::string_view> names;
  std::transform(known.begin(), known.end(), std::back_inserter(names),
                 [](Named const& candidate) { return candidate.name; });
  return suggestName(name, names);
}

constexpr SettingKey kAnyPathKey{"", SettingShape::kPath, "comum = \"items\""};

// The library keeps keys in the order of their names; people expect that of the file.
std::vector<std::pair<toml::key const*, toml::node const*>> inFileOrder(toml::table const& table) {
  std::vector<std::pair<toml::key const*, toml::node const*>> entries;
  for (auto const& [key, node] : table) {
    entries.emplace_back(&key, &node);
  }
  std::stable_sort(entries.begin(), entries.end(), [](auto const& left, auto const& right) {
    auto const& one = left.first->source().begin;
    auto const& other = right.first->source().begin;
    return std::pair{one.line, one.column} < std::pair{other.line, other.column};
  });
  return entries;
}

/// A key of the file, and what the application knows of it.
struct KnownEntry {
  std::string section;  // as Settings calls it
  toml::key const& key;
  SettingKey const& known;
};

/// Walks one parsed file and enters what it finds.
class SettingsReader {
 public:
  SettingsReader(Settings& settings, std::filesystem::path file)
      : settings_(settings), file_(std::move(file)) {}

  void readFile(toml::table const& root) {
    for (auto const& [key, node] : inFileOrder(root)) {
      if (!node->is_table()) {
        fail(key->source(),
             fmt::format("'{}' stands outside of every section; put it below the [section] that it "
                         "belongs to",
                         key->str()));
      }
      readSection(*key, *node->as_table());
    }
  }

 private:
  void readSection(toml::key const& key, toml::table const& table) {
    auto const* const section = findSection(key.str());
    if (section == nullptr) {
      fail(key.source(),
           fmt::format("unknown section [{}]{}", key.str(), suggest(key.str(), settingSections())));
    }
    settings_.addSection(std::string(section->name));
    for (auto const& [name, value] : inFileOrder(table)) {
      readEntry(*section, *name, *value);
    }
  }

  void readEntry(SettingSection const& section, toml::key const& key, toml::node const& node) {
    switch (section.keys) {
      case SettingSection::Keys::kListed:
        return readKnown(section, std::string(section.name), key, node);
      case SettingSection::Keys::kAnyPath:
        return enter({std::string(section.name), key, kAnyPathKey}, node);
      case SettingSection::Keys::kTables:
        return readTable(section, key, node);
    }
  }

  void readTable(SettingSection const& section, toml::key const& key, toml::node const& node) {
    std::string const name = fmt::format("{}.{}", section.name, key.str());
    if (!node.is_table()) {
      fail(key.source(),
           fmt::format("'{}' in [{}] must be a table, not {}; write it as [{}] with its keys below",
                       key.str(), section.name, describeNode(node), name));
    }
    settings_.set(std::string(section.name), std::string(key.str()), {});
    settings_.addSection(name);
    for (auto const& [entryKey, entry] : inFileOrder(*node.as_table())) {
      readKnown(section, name, *entryKey, *entry);
    }
  }

  void readKnown(SettingSection const& section, std::string const& sectionName,
                 toml::key const& key, toml::node const& node) {
    auto const* const known = findKey(section, key.str());
    if (known == nullptr) {
      fail(key.source(), fmt::format("unknown key '{}' in [{}]{}", key.str(), sectionName,
                                     suggest(key.str(), section.known)));
    }
    enter({sectionName, key, *known}, node);
  }

  void enter(KnownEntry const& entry, toml::node const& node) {
    settings_.set(entry.section, std::string(entry.key.str()), valuesOf(entry, node));
  }

  std::vector<std::string> valuesOf(KnownEntry const& entry, toml::node const& node) const {
    auto const element = elementShape(entry.known.shape);
    if (element == entry.known.shape) {
      return {demandValue(entry, node, element, describeNode(node))};
    }
    if (!node.is_array()) {
      failShape(entry, describeNode(node));
    }
    std::vector<std::string> texts;
    for (auto const& item : *node.as_array()) {
      auto const found = fmt::format("one with {} in it", describeNode(item));
      texts.push_back(demandValue(entry, item, element, found));
    }
    return texts;
  }

  std::string demandValue(KnownEntry const& entry, toml::node const& node, SettingShape shape,
                          std::string_view found) const {
    auto text = textOf(node, shape);
    if (!text) {
      failShape(entry, found);
    }
    if (text->find('\0') != std::string::npos) {
      // It would end the text for the system, and so name another file than the one read here.
      fail(entry.key.source(), fmt::format("'{}' in [{}] holds a NUL character; remove it",
                                           entry.key.str(), entry.section));
    }
    return shape == SettingShape::kPath && !text->empty() ? settings_.resolve(*text).string()
                                                          : *text;
  }

  [[noreturn]] void failShape(KnownEntry const& entry, std::string_view found) const {
    fail(entry.key.source(),
         fmt::format("'{}' in [{}] must be {}, not {}; write for example {}", entry.key.str(),
                     entry.section, describeShape(entry.known.shape), found, entry.known.example));
  }

  [[noreturn]] void fail(toml::source_region const& where, std::string const& what) const {
    failAt(file_, where.begin.line, what);
  }

  Settings& settings_;
  std::filesystem::path const file_;
};

toml::table parseTable(std::string_view text, std::filesystem::path const& file) {
  try {
    return toml::parse(asciiSettings(text), file.string());
  } catch (SettingsTextFault const& fault) {
    failAt(file, fault.line(), fault.what());
  } catch (toml::parse_error const& error) {
    failAt(file, error.source().begin.line,
           fmt::format("{}; correct the line", error.description()));
  }
}

}  // namespace

Settings Settings::load(std::filesystem::path const& file) {
  return parse(readWhole(file), file);
}

Settings Settings::parse(std::string_view text, std::filesystem::path const& file) {
  Settings settings;
  settings.file_ = std::filesystem::absolute(file).lexically_normal();
  SettingsReader(settings, settings.file_).readFile(parseTable(text, settings.file_));
  return settings;
}

}  // namespace mox::core
