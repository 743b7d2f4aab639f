#include "core/database/database_url.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr std::size_t kMaxLength = 4096;
constexpr std::size_t kMaxEchoedName = 20;
constexpr unsigned kMaxTimeoutSeconds = 86400;

[[noreturn]] void fail(std::string const& what) {
  throw moxDefaultErrorImpl<moxError>("Database URL: " + what);
}

/// Words that are shown in messages: nothing that could be a piece of a password typed at a wrong
/// place.
bool isPlainWord(std::string_view text) {
  return !text.empty() && text.size() <= kMaxEchoedName &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  char const lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    int const high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
    int const low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
    if (high < 0 || low < 0) {
      fail(
          "\"%\" must be followed by two hexadecimal digits; write a percent sign itself as "
          "\"%25\".");
    }
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  if (result.find('\0') != std::string::npos) {
    fail("it contains a zero byte; remove it.");
  }
  return result;
}

std::optional<unsigned> numberIn(std::string_view text, unsigned least, unsigned most) {
  unsigned value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) {
    return std::nullopt;
  }
  return value;
}

unsigned seconds(std::string_view name, std::string_view value, unsigned least) {
  auto const number = numberIn(value, least, kMaxTimeoutSeconds);
  if (!number) {
    fail("option \"" + std::string(name) + "\" must be a number of seconds from " +
         std::to_string(least) + " to " + std::to_string(kMaxTimeoutSeconds) + ".");
  }
  return *number;
}

[[noreturn]] void failUnknownOption(std::string_view name, std::string_view known) {
  std::string const shown =
      isPlainWord(name) ? "unknown option \"" + std::string(name) + "\"" : "unknown option";
  fail(shown + "; known are " + std::string(known) + ".");
}

void setSqliteOption(DatabaseUrl& url, std::string_view name, std::string value) {
  if (name != "mode") {
    failUnknownOption(name, "\"mode\"");
  }
  if (value != "ro" && value != "rw" && value != "rwc") {
    fail("option \"mode\" must be \"ro\" (read only), \"rw\" or \"rwc\" (makes a missing file).");
  }
  url.mode = std::move(value);
}

void setMariadbOption(DatabaseUrl& url, std::string_view name, std::string value) {
  if (name == "socket") {
    url.socket = std::move(value);
  } else if (name == "tls_ca") {
    url.tlsCa = std::move(value);
  } else if (name == "connect_timeout") {
    url.connectTimeoutSeconds = seconds(name, value, 1);
  } else if (name == "read_timeout") {
    url.readTimeoutSeconds = seconds(name, value, 0);
  } else if (name == "write_timeout") {
    url.writeTimeoutSeconds = seconds(name, value, 0);
  } else {
    failUnknownOption(
        name,
        "\"socket\", \"connect_timeout\", \"read_timeout\", \"write_timeout\" and \"tls_ca\"");
  }
}

using OptionSetter = void (*)(DatabaseUrl&, std::string_view, std::string);

void readOptions(DatabaseUrl& url, std::string_view text, OptionSetter set) {
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('&'), text.size());
    std::string_view const option = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    std::size_t const equals = option.find('=');
    if (equals == 0 || equals == std::string_view::npos || equals + 1 == option.size()) {
      fail("what follows \"?\" must be written name=value, several parted by \"&\".");
    }
    set(url, option.substr(0, equals), decoded(option.substr(equals + 1)));
  }
}

/// Cuts the options off `text` and gives them.
std::string_view takeOptions(std::string_view& text) {
  std::size_t const mark = text.find('?');
  if (mark == std::string_view::npos) {
    return {};
  }
  std::string_view const options = text.substr(mark + 1);
  text = text.substr(0, mark);
  return options;
}

DatabaseUrl parseSqlite(std::string_view rest) {
  DatabaseUrl url;
  readOptions(url, takeOptions(rest), setSqliteOption);
  if (rest.starts_with("///")) {
    rest.remove_prefix(2);
  } else if (rest.starts_with("//")) {
    fail(
        "write the file directly behind \"sqlite:\", as in \"sqlite:escola.db\" or "
        "\"sqlite:/data/escola.db\".");
  }
  url.path = decoded(rest);
  if (url.path.empty()) {
    fail("the file is missing; write \"sqlite:PATH\", or \"sqlite::memory:\" for one in memory.");
  }
  return url;
}

void readPort(DatabaseUrl& url, std::string_view text) {
  auto const port = numberIn(text, 1, 65535);
  if (!port) {
    fail("the port, behind \":\", must be a number from 1 to 65535.");
  }
  url.port = *port;
}

void readHost(DatabaseUrl& url, std::string_view text) {
  std::size_t colon = text.find(':');
  if (text.starts_with('[')) {
    std::size_t const close = text.find(']');
    if (close == std::string_view::npos || (close + 1 < text.size() && text[close + 1] != ':')) {
      fail("an address in brackets must end with \"]\", at most a port behind it.");
    }
    url.host = text.substr(1, close - 1);
    colon = close + 1 < text.size() ? close + 1 : std::string_view::npos;
  } else {
    url.host = decoded(text.substr(0, colon));
  }
  if (url.host.empty()) {
    fail("the host is missing; write \"mariadb://user@host/database\".");
  }
  if (colon != std::string_view::npos) {
    readPort(url, text.substr(colon + 1));
  }
}

void readAuthority(DatabaseUrl& url, std::string_view text) {
  std::size_t const at = text.rfind('@');
  if (at == std::string_view::npos || at == 0) {
    fail("the user is missing; write \"mariadb://user@host/database\".");
  }
  std::string_view const user = text.substr(0, at);
  if (user.find(':') != std::string_view::npos) {
    fail(
        "a password must not stand in it; remove it and name the variable or the file that holds "
        "it by the "
        "setting \"password_env\" or \"password_file\".");
  }
  if (user.find('@') != std::string_view::npos) {
    fail("there are two \"@\"; write one that belongs to the user's name as \"%40\".");
  }
  url.user = decoded(user);
  readHost(url, text.substr(at + 1));
}

void checkSocket(DatabaseUrl const& url) {
  if (url.socket.empty()) {
    return;
  }
  if (url.host != "localhost" || url.port != 0) {
    fail(
        "a socket belongs to this machine; with the option \"socket\" write \"localhost\" as the "
        "host, without a "
        "port.");
  }
}

DatabaseUrl parseMariadb(std::string_view rest) {
  DatabaseUrl url;
  url.kind = DatabaseUrl::Kind::kMariadb;
  std::size_t const authorityEnd = std::min(rest.find_first_of("/?"), rest.size());
  std::string_view const authority = rest.substr(0, authorityEnd);
  if (authority.find('@') == std::string_view::npos && rest.find('@') != std::string_view::npos) {
    fail(
        "what stands before \"@\" contains \"/\" or \"?\": percent-encode them in the user's name; "
        "a password must "
        "not stand there, name it by the setting \"password_env\" or \"password_file\".");
  }
  readAuthority(url, authority);
  std::string_view path = rest.substr(authorityEnd);
  std::string_view const options = takeOptions(path);
  if (path.starts_with('/')) {
    path.remove_prefix(1);
  }
  if (path.find('/') != std::string_view::npos) {
    fail("only the database's name may stand behind the host; write a \"/\" in it as \"%2F\".");
  }
  url.database = decoded(path);
  readOptions(url, options, setMariadbOption);
  checkSocket(url);
  return url;
}

}  // namespace

DatabaseUrl parseDatabaseUrl(std::string_view text) {
  if (text.size() > kMaxLength) {
    fail("it is longer than " + std::to_string(kMaxLength) + " bytes.");
  }
  if (text.starts_with("sqlite:")) {
    return parseSqlite(text.substr(7));
  }
  if (text.starts_with("mariadb://")) {
    return parseMariadb(text.substr(10));
  }
  std::string_view const kind = text.substr(0, std::min(text.find(':'), text.size()));
  std::string const shown = isPlainWord(kind) && kind.size() < text.size()
                                ? "unknown kind of database \"" + std::string(kind) + "\"; "
                                : "";
  fail(shown +
       "it must begin with \"sqlite:\" or \"mariadb://\", as in \"sqlite:escola.db\" or "
       "\"mariadb://user@host/database\".");
}

}  // namespace mox::core
