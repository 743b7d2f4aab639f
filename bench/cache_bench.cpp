// What it costs to bring ten thousand definitions from a collection file into the cache, beside
// reading the file, inflating it and parsing the XML; and what a look-up by name costs in caches of
// different sizes. The definitions are those of the example, over and over under names of their
// own.
//
// Definitions are loaded when an application starts, once, into memory that the system has yet to
// bring in: the cases "atStart" measure one load in a new process each, floor and ours alike. The
// same two in a loop tell the processor's work alone. There the memory of the round before is used
// again, which no start has; and ours begins each round by tidying up the small blocks that
// emptying the cache left behind, which is some 5 ms that no start pays either.

#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/app/application.h"
#include "mox/core/module.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_utils.h"

namespace {

constexpr std::size_t kDefinitions = 10'000;
constexpr std::size_t kHeader = 10;  // bytes ahead of the compressed document

class OurHost {
 public:
  OurHost() {
    application_.addModule({moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
                            moxPlugIn_EntryPoint, moxPlugIn_RegisterClasses},
                           "the linked module");
    application_.start();
  }

  template <class T>
  std::shared_ptr<T> get(std::string const& name) {
    return application_.get<T>(name);
  }

 private:
  mox::core::Application application_;
};

OurHost& host() {
  static OurHost one;
  return one;
}

/// The sources of the example's definitions, each an element in a document of its own.
std::vector<pugi::xml_document> exampleSources() {
  std::vector<pugi::xml_document> sources;
  for (auto const& file : std::filesystem::directory_iterator(ESCOLA_DEFINITIONS_DIR)) {
    pugi::xml_document document;
    if (!document.load_file(file.path().c_str())) {
      continue;
    }
    for (auto const& source : document.document_element().children("moxSQLDataSource")) {
      sources.emplace_back().append_copy(source);
    }
  }
  return sources;
}

/// A collection file of so many definitions, "0" and up, made anew and removed at the end.
class CollectionFile {
 public:
  explicit CollectionFile(std::size_t definitions)
      : path_(std::filesystem::temp_directory_path() /
              ("mox_cache_bench_" + std::to_string(::getpid()) + "_" + std::to_string(definitions) +
               ".zcf")) {
    auto sources = exampleSources();
    if (sources.empty()) {
      throw std::runtime_error("there are no definitions in " ESCOLA_DEFINITIONS_DIR);
    }
    pugi::xml_document document;
    auto root = document.append_child("moxZYNCollection");
    for (std::size_t i = 0; i < definitions; ++i) {
      auto copy = root.append_copy(sources[i % sources.size()].document_element());
      copy.attribute("name").set_value(std::to_string(i).c_str());
    }
    std::string const plain = path_.string() + ".xml";
    document.save_file(plain.c_str());
    host().get<moxZYNUtils>("moxZYNUtils")->plainToBinary(plain, path_.string());
    std::filesystem::remove(plain);
  }
  CollectionFile(CollectionFile const&) = delete;
  CollectionFile& operator=(CollectionFile const&) = delete;
  ~CollectionFile() { std::filesystem::remove(path_); }

  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

CollectionFile const& largeFile() {
  static CollectionFile const file(kDefinitions);
  return file;
}

std::string bytesOf(std::string const& path) {
  std::string bytes(std::filesystem::file_size(path), '\0');
  std::ifstream(path, std::ios::binary)
      .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

/// Small pages by the thousand would cost half as much as inflating into them.
void askForLargePages(void* begin, std::size_t size) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20;
  if (std::align(kLargePage, kLargePage, begin, size) != nullptr) {
    ::madvise(begin, size - size % kLargePage, MADV_HUGEPAGE);
  }
}

/// The floor: the file in one read, inflated in one step into memory that is taken once and not
/// cleared, parsed where it lies.
class ParsedFile {
 public:
  explicit ParsedFile(std::string const& path) {
    inflateInto(bytesOf(path));
    document_.load_buffer_inplace(text_.get(), size_);
  }

  std::size_t definitions() const {
    auto const children = document_.document_element().children();
    return static_cast<std::size_t>(std::distance(children.begin(), children.end()));
  }

 private:
  void inflateInto(std::string const& packed) {
    constexpr std::size_t kGrowth = 12;  // definitions grow elevenfold
    auto const* const source = reinterpret_cast<Bytef const*>(packed.data()) + kHeader;
    uLongf size = packed.size() * kGrowth;
    text_ = std::make_unique_for_overwrite<char[]>(size);
    askForLargePages(text_.get(), size);
    auto* const target = reinterpret_cast<Bytef*>(text_.get());
    if (uncompress(target, &size, source, packed.size() - kHeader) != Z_OK) {
      throw std::runtime_error("the file cannot be inflated");
    }
    size_ = size;
  }

  std::unique_ptr<char[]> text_;
  std::size_t size_ = 0;
  pugi::xml_document document_;
};

bool isCached(std::string const& path) {
  auto const cache = host().get<moxZYNCache>("moxZYNCache");
  cache->appendCollection(host().get<moxZYNUtils>("moxZYNUtils")->loadBinaryFile(path));
  return cache->getCollection(std::to_string(kDefinitions - 1)) != nullptr;
}

void inflateAndParse(benchmark::State& state) {
  std::string const path = largeFile().path();
  for (auto _ : state) {
    if (ParsedFile(path).definitions() != kDefinitions) {
      state.SkipWithError("the file does not hold the definitions");
      return;
    }
  }
}

void fileIntoCache(benchmark::State& state) {
  std::string const path = largeFile().path();
  for (auto _ : state) {
    if (!isCached(path)) {
      state.SkipWithError("the cache does not hold the definitions");
      return;
    }
    state.PauseTiming();
    host().get<moxZYNCache>("moxZYNCache")->clear();
    state.ResumeTiming();
  }
}

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

constexpr std::string_view kOneLoad = "--one-load";

/// What a process does that was begun for one load: prints the processor's seconds, or nothing when
/// not all definitions came. Memory goes with the process.
int oneLoad(std::string_view which, std::string const& path) {
  host();
  double const begin = processorSeconds();
  std::unique_ptr<ParsedFile const> parsed;
  bool isRight = false;
  if (which == "floor") {
    parsed = std::make_unique<ParsedFile>(path);
    isRight = parsed->definitions() == kDefinitions;
  } else {
    isRight = isCached(path);
  }
  double const end = processorSeconds();
  if (isRight) {
    std::printf("%.9f\n", end - begin);
  }
  std::fflush(stdout);
  ::_exit(0);
}

/// Seconds of one load in a process of its own; negative when it failed.
double secondsOfOneLoad(std::string const& which) {
  auto const self = std::filesystem::read_symlink("/proc/self/exe").string();
  std::string const command =
      '"' + self + "\" " + std::string(kOneLoad) + ' ' + which + " \"" + largeFile().path() + '"';
  double seconds = -1;
  if (FILE* const pipe = ::popen(command.c_str(), "r")) {
    if (std::fscanf(pipe, "%lf", &seconds) != 1) {
      seconds = -1;
    }
    ::pclose(pipe);
  }
  return seconds;
}

void atStart(benchmark::State& state, std::string const& which) {
  for (auto _ : state) {
    double const seconds = secondsOfOneLoad(which);
    if (seconds < 0) {
      state.SkipWithError("the definitions were not loaded");
      return;
    }
    state.SetIterationTime(seconds);
  }
}

void lookUp(benchmark::State& state) {
  auto const count = static_cast<std::size_t>(state.range(0));
  CollectionFile const file(count);
  auto const cache = host().get<moxZYNCache>("moxZYNCache");
  cache->appendCollection(host().get<moxZYNUtils>("moxZYNUtils")->loadBinaryFile(file.path()));
  std::vector<std::string> names;
  for (std::size_t i = 0; i < 1024; ++i) {
    names.push_back(std::to_string(i * 7919 % count));
  }
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cache->getCollection(names[next++ % names.size()]));
  }
  cache->clear();
}

BENCHMARK_CAPTURE(atStart, inflateAndParse, "floor")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK_CAPTURE(atStart, fileIntoCache, "ours")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK(inflateAndParse)->Unit(benchmark::kMillisecond);
BENCHMARK(fileIntoCache)->Unit(benchmark::kMillisecond);
BENCHMARK(lookUp)->Arg(100)->Arg(1'000)->Arg(10'000);

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && argv[1] == kOneLoad) {
    return oneLoad(argv[2], argv[3]);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
