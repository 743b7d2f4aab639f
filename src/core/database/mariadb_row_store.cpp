#include "core/database/mariadb_row_store.h"

#include <algorithm>
#include <cstring>

namespace mox::core {
namespace {

constexpr std::size_t kChunkSize = std::size_t{1} << 20;

template <class Value>
void append(std::string& chunk, Value const& value) {
  chunk.append(reinterpret_cast<char const*>(&value), sizeof value);
}

void appendField(std::string& chunk, MariadbField const& field) {
  append(chunk, field.isNull);
  if (field.isNull != 0) {
    return;
  }
  if (field.holdsBytes()) {
    append(chunk, field.length);
    chunk.append(field.view());
  } else if (field.holdsTime()) {
    append(chunk, field.time);
  } else {
    append(chunk, field.number);
  }
}

template <class Value>
void take(char const*& source, Value& value) {
  std::memcpy(&value, source, sizeof value);
  source += sizeof value;
}

void takeField(char const*& source, MariadbField& field) {
  take(source, field.isNull);
  if (field.isNull != 0) {
    return;
  }
  if (field.holdsBytes()) {
    take(source, field.length);
    field.bytes.resize(std::max<std::size_t>(field.bytes.size(), field.length));
    std::copy_n(source, field.length, field.bytes.data());
    source += field.length;
  } else if (field.holdsTime()) {
    take(source, field.time);
  } else {
    take(source, field.number);
  }
}

}  // namespace

void MariadbRowStore::push(MariadbRow const& row) {
  if (chunks_.empty() || chunks_.back().size() >= kChunkSize) {
    chunks_.emplace_back();
  }
  for (MariadbField const& field : row.fields()) {
    appendField(chunks_.back(), field);
  }
}

void MariadbRowStore::pop(MariadbRow& row) {
  std::string const& chunk = chunks_.front();
  char const* source = chunk.data() + position_;
  for (MariadbField& field : row.fields()) {
    takeField(source, field);
  }
  position_ = static_cast<std::size_t>(source - chunk.data());
  if (position_ == chunk.size()) {
    chunks_.pop_front();
    position_ = 0;
  }
}

void MariadbRowStore::clear() {
  chunks_.clear();
  position_ = 0;
}

}  // namespace mox::core
