#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <toml++/toml.h>

#include "core/app/settings.h"
#include "core/app/settings_schema.h"
#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr std::size_t kLargestFile = 1024 * 1024;

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

[[noreturn]] void fail(std::filesystem::path const& file, toml::source_region const& where,
                       std::string const& what) {
  throw moxDefaultErrorImpl<moxError>(
      fmt::format("{}:{}: {}", file.string(), where.begin.line, asOneLine(what)));
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

/// Walks one parsed file and enters what it finds.
class SettingsReader {
 public:
  SettingsReader(Settings& settings, std::filesystem::path file)
      : settings_(settings), file_(std::move(file)) {}

  void readFile(toml::table const& root) {
    for (auto const& [key, node] : inFileOrder(root)) {
      readSection(*key, *node);
    }
  }

 private:
  void readSection(toml::key const& key, toml::node const& node) {
    auto const* const section = findSection(key.str());
    if (section == nullptr) {
      fail(file_, key.source(),
           fmt::format("unknown section [{}]{}", key.str(), suggest(key.str(), settingSections())));
    }
    settings_.addSection(std::string(section->name));
    for (auto const& [name, value] : inFileOrder(demandTable(key, node))) {
      readEntry(*section, *name, *value);
    }
  }

  void readEntry(SettingSection const& section, toml::key const& key, toml::node const& node) {
    std::string const name(section.name);
    switch (section.keys) {
      case SettingSection::Keys::kListed:
        readKnown(section, name, key, node);
        break;
      case SettingSection::Keys::kAnyPath:
        enter(name, key, node, {key.str(), SettingShape::kPath, "comum = \"items\""});
        break;
      case SettingSection::Keys::kTables:
        readTable(section, key, node);
        break;
    }
  }

  void readTable(SettingSection const& section, toml::key const& key, toml::node const& node) {
    std::string const name = fmt::format("{}.{}", section.name, key.str());
    settings_.set(std::string(section.name), std::string(key.str()), {});
    settings_.addSection(name);
    for (auto const& [entryKey, entry] : inFileOrder(demandTable(key, node))) {
      readKnown(section, name, *entryKey, *entry);
    }
  }

  void readKnown(SettingSection const& section, std::string const& sectionName,
                 toml::key const& key, toml::node const& node) {
    auto const* const known = findKey(section, key.str());
    if (known == nullptr) {
      fail(file_, key.source(),
           fmt::format("unknown key '{}' in [{}]{}", key.str(), sectionName,
                       suggest(key.str(), section.known)));
    }
    enter(sectionName, key, node, *known);
  }

  void enter(std::string const& section, toml::key const& key, toml::node const& node,
             SettingKey const& known) {
    settings_.set(section, std::string(key.str()), values(section, key, node, known));
  }

  std::vector<std::string> values(std::string const& section, toml::key const& key,
                                  toml::node const& node, SettingKey const& known) const {
    switch (known.shape) {
      case SettingShape::kTextList:
        return elements(section, key, node, known, SettingShape::kText);
      case SettingShape::kPathList:
        return elements(section, key, node, known, SettingShape::kPath);
      case SettingShape::kIntegerList:
        return elements(section, key, node, known, SettingShape::kInteger);
      default:
        return {single(section, key, node, known, known.shape)};
    }
  }

  std::vector<std::string> elements(std::string const& section, toml::key const& key,
                                    toml::node const& node, SettingKey const& known,
                                    SettingShape shape) const {
    auto const* const array = node.as_array();
    if (array == nullptr) {
      failShape(section, key, node, known);
    }
    std::vector<std::string> texts;
    for (auto const& element : *array) {
      texts.push_back(single(section, key, element, known, shape));
    }
    return texts;
  }

  std::string single(std::string const& section, toml::key const& key, toml::node const& node,
                     SettingKey const& known, SettingShape shape) const {
    if (auto const* const text = node.as_string(); text != nullptr && isTextShape(shape)) {
      return checkedText(section, key, **text, shape);
    }
    if (auto const* const number = node.as_integer();
        number != nullptr && shape == SettingShape::kInteger) {
      return fmt::format("{}", **number);
    }
    if (auto const* const flag = node.as_boolean();
        flag != nullptr && shape == SettingShape::kBoolean) {
      return **flag ? "true" : "false";
    }
    failShape(section, key, node, known);
  }

  static bool isTextShape(SettingShape shape) {
    return shape == SettingShape::kText || shape == SettingShape::kPath;
  }

  // A byte 0 would end the text for the system, and so name another file than the one read here.
  std::string checkedText(std::string const& section, toml::key const& key, std::string const& text,
                          SettingShape shape) const {
    if (text.find('\0') != std::string::npos) {
      fail(file_, key.source(),
           fmt::format("'{}' in [{}] holds a NUL character; remove it", key.str(), section));
    }
    return shape == SettingShape::kPath && !text.empty() ? settings_.resolve(text).string() : text;
  }

  toml::table const& demandTable(toml::key const& key, toml::node const& node) const {
    auto const* const table = node.as_table();
    if (table == nullptr) {
      fail(file_, key.source(),
           fmt::format("'{}' must be a table, not {}; write it as [{}] with its keys below",
                       key.str(), describeNode(node), key.str()));
    }
    return *table;
  }

  [[noreturn]] void failShape(std::string const& section, toml::key const& key,
                              toml::node const& node, SettingKey const& known) const {
    fail(file_, key.source(),
         fmt::format("'{}' in [{}] must be {}, not {}; write for example {}", key.str(), section,
                     describeShape(known.shape), describeNode(node), known.example));
  }

  template <class Named>
  static std::string suggest(std::string_view name, std::vector<Named> const& known) {
    std::vector<std::string_view> names;
    std::transform(known.begin(), known.end(), std::back_inserter(names),
                   [](Named const& candidate) { return candidate.name; });
    return suggestName(name, names);
  }

  Settings& settings_;
  std::filesystem::path const file_;
};

toml::table parseTable(std::string_view text, std::filesystem::path const& file) {
  try {
    return toml::parse(text, file.string());
  } catch (toml::parse_error const& error) {
    fail(file, error.source(), fmt::format("{}; correct the line", error.description()));
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
