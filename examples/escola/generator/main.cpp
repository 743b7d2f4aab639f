#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "escola/generator/example_database.h"
#include "mox/core/error.h"

namespace {

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

struct Arguments {
  escola::BuildOptions build;
  std::string scale = "demo";
  std::string today;
  std::string passwordVariable = "ZYN_PASSWORD";
  bool checksum = false;
  bool onlyChecksum = false;
  bool quiet = false;
};

void declare(CLI::App& program, Arguments& arguments) {
  program
      .add_option("--database", arguments.build.url,
                  "Database: sqlite:FILE or mariadb://user@host:port/name (?socket=PATH)")
      ->required();
  program
      .add_option("--scale", arguments.scale,
                  "Size: tiny, small, demo, medium (1 million grades), large (10 million), or a "
                  "number of grades")
      ->capture_default_str();
  program.add_option("--seed", arguments.build.settings.seed, "Another seed gives another school")
      ->capture_default_str();
  program.add_option("--today", arguments.today,
                     "Last day of the ten school years, YYYY-MM-DD (default 2024-10-15)");
  program
      .add_option("--password-env", arguments.passwordVariable,
                  "Environment variable with the password of the database's user")
      ->capture_default_str();
  program.add_flag("--force", arguments.build.replace,
                   "Replace the example's tables where they are there already");
  program.add_flag("--checksum", arguments.checksum,
                   "Print rows and checksum of each table afterwards");
  program.add_flag("--only-checksum", arguments.onlyChecksum,
                   "Generate nothing, print the checksums");
  program.add_flag("--quiet", arguments.quiet, "No progress and no summary");
}

escola::Day parseDay(std::string const& text) {
  int year = 0;
  int month = 0;
  int day = 0;
  char rest = 0;
  bool const read = std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &rest) == 3;
  std::chrono::year_month_day const date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!read || !date.ok() || year < 1990 || year > 9000) {
    throw std::invalid_argument("--today '" + text +
                                "' is no date like 2024-10-15 of the years 1990 to 9000");
  }
  return date;
}

/// Shows how far the work is, at most ten times a second, where somebody is looking.
class ProgressLine {
 public:
  explicit ProgressLine(bool shown) : shown_(shown) {}
  ~ProgressLine() { clear(); }
  ProgressLine(ProgressLine const&) = delete;
  ProgressLine& operator=(ProgressLine const&) = delete;

  void show(std::int64_t grades, std::int64_t expected) {
    auto const now = std::chrono::steady_clock::now();
    if (!shown_ || now - last_ < std::chrono::milliseconds(100)) {
      return;
    }
    last_ = now;
    drawn_ = true;
    std::cerr << "\r\x1b[K" << grades << " grades";
    if (expected > 0) {
      std::cerr << " (" << grades * 100 / expected << " %)";
    }
    std::cerr << std::flush;
  }

  void clear() {
    if (drawn_) {
      std::cerr << "\r\x1b[K" << std::flush;
      drawn_ = false;
    }
  }

 private:
  bool shown_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point last_;
};

void build(moxDatabaseConnection& connection, Arguments const& arguments) {
  ProgressLine line(!arguments.quiet && ::isatty(STDERR_FILENO) == 1);
  std::int64_t made = 0;
  escola::buildExample(connection, arguments.build,
                       [&](std::int64_t grades, std::int64_t expected) {
                         made = expected > 0 ? std::min(grades, expected) : grades;
                         line.show(grades, expected);
                       });
  line.clear();
  if (!arguments.quiet) {
    std::cerr << "The school is ready, with " << made << " grades in " << arguments.build.url
              << "\n";
  }
}

void run(Arguments& arguments) {
  arguments.build.scale = escola::parseScale(arguments.scale);
  if (!arguments.today.empty()) {
    arguments.build.settings.today = parseDay(arguments.today);
  }
  char const* const password = std::getenv(arguments.passwordVariable.c_str());
  arguments.build.password = password == nullptr ? "" : password;
  auto const connection = escola::openForExample(arguments.build.url, arguments.build.password);
  if (!arguments.onlyChecksum) {
    build(*connection, arguments);
  }
  if (arguments.checksum || arguments.onlyChecksum) {
    std::cout << escola::checksumReport(escola::readChecksums(*connection)) << std::flush;
  }
}

int report(std::string const& sentence, int status) {
  std::cerr << "escola-generate: " << sentence << "\n";
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program(
      "Makes the database of a school network: the same content for the same seed, size and day.",
      "escola-generate");
  Arguments arguments;
  declare(program, arguments);
  try {
    program.parse(argc, argv);
    run(arguments);
  } catch (CLI::Success const& success) {
    return program.exit(success);
  } catch (CLI::ParseError const& error) {
    return report(error.what(), kBadUsage);
  } catch (std::invalid_argument const& error) {
    return report(error.what(), kBadUsage);
  } catch (moxError const& error) {
    return report(error.errorMessage(), kFailed);
  } catch (std::exception const& error) {
    return report(error.what(), kFailed);
  }
  return 0;
}
