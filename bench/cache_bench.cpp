// What it costs to bring ten thousand definitions from a collection file into the cache, beside
// reading the file, inflating it and parsing the XML; and what a look-up by name costs in caches of
// different sizes. The definitions are those of the example, over and over under names of their
// own.

#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <sstream>
#include <string>
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

std::string inflated(std::string const& packed) {
  std::string plain;
  std::vector<char> window(1 << 18);
  z_stream stream{};
  inflateInit(&stream);
  stream.next_in = const_cast<Bytef*>(reinterpret_cast<Bytef const*>(packed.data())) + kHeader;
  stream.avail_in = static_cast<uInt>(packed.size() - kHeader);
  int status = Z_OK;
  while (status == Z_OK) {
    stream.next_out = reinterpret_cast<Bytef*>(window.data());
    stream.avail_out = static_cast<uInt>(window.size());
    status = inflate(&stream, Z_NO_FLUSH);
    plain.append(window.data(), window.size() - stream.avail_out);
  }
  inflateEnd(&stream);
  return plain;
}

void inflateAndParse(benchmark::State& state) {
  std::string const path = largeFile().path();
  for (auto _ : state) {
    std::ifstream file(path, std::ios::binary);
    std::string const packed{std::istreambuf_iterator<char>(file), {}};
    std::string plain = inflated(packed);
    pugi::xml_document document;
    document.load_buffer_inplace(plain.data(), plain.size());
    auto const children = document.document_element().children();
    if (std::distance(children.begin(), children.end()) != kDefinitions) {
      state.SkipWithError("the file does not hold the definitions");
      return;
    }
  }
}

void fileIntoCache(benchmark::State& state) {
  std::string const path = largeFile().path();
  auto const cache = host().get<moxZYNCache>("moxZYNCache");
  auto const utils = host().get<moxZYNUtils>("moxZYNUtils");
  for (auto _ : state) {
    cache->appendCollection(utils->loadBinaryFile(path));
    if (!cache->getCollection(std::to_string(kDefinitions - 1))) {
      state.SkipWithError("the cache does not hold the definitions");
      return;
    }
    state.PauseTiming();
    cache->clear();
    state.ResumeTiming();
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

BENCHMARK(inflateAndParse)->Unit(benchmark::kMillisecond);
BENCHMARK(fileIntoCache)->Unit(benchmark::kMillisecond);
BENCHMARK(lookUp)->Arg(100)->Arg(1'000)->Arg(10'000);

}  // namespace
