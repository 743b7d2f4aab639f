#include "core/app/library_file.h"

#include <link.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>

namespace mox::core {

namespace {

using FileHeader = ElfW(Ehdr);
using SegmentHeader = ElfW(Phdr);

std::optional<FileHeader> readFileHeader(std::istream& file) {
  FileHeader header{};
  file.read(reinterpret_cast<char*>(&header), sizeof header);
  if (!file || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
      header.e_phentsize != sizeof(SegmentHeader)) {
    return std::nullopt;
  }
  return header;
}

bool isInside(SegmentHeader const& segment, std::uint64_t fileSize) {
  return segment.p_offset <= fileSize && segment.p_filesz <= fileSize - segment.p_offset;
}

}  // namespace

bool isCutShort(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  auto const header = readFileHeader(file);
  if (!header) {
    return false;
  }
  file.seekg(0, std::ios::end);
  auto const fileSize = static_cast<std::uint64_t>(file.tellg());
  file.seekg(static_cast<std::streamoff>(header->e_phoff));
  for (int i = 0; i < header->e_phnum; ++i) {
    SegmentHeader segment{};
    file.read(reinterpret_cast<char*>(&segment), sizeof segment);
    if (!file || (segment.p_type == PT_LOAD && !isInside(segment, fileSize))) {
      return true;
    }
  }
  return false;
}

}  // namespace mox::core
