#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/output/output_buffer.h"
#include "cli/output/result_table.h"
#include "core/storage/blob.h"
#include "zyn/matrix/data_matrix_columns.h"

namespace mox::cli::testing {

/// A sink that keeps everything.
class StringSink : public ByteSink {
 public:
  void write(std::string_view bytes) override { text += bytes; }

  std::string text;
};

using Column = std::shared_ptr<moxDataMatrixColumn>;

/// A column of one kind; an empty optional is a null.
template <class ColumnClass, class Value>
Column column(std::string const& name, std::vector<std::optional<Value>> const& values) {
  auto made = std::make_shared<ColumnClass>();
  made->setName(name);
  for (auto const& value : values) {
    if (value) {
      made->appendValue(*value);
    } else {
      made->appendNull();
    }
  }
  return made;
}

inline Column ints(std::string const& name, std::vector<std::optional<int>> const& values) {
  return column<moxDataMatrixIntColumn_internal>(name, values);
}

inline Column doubles(std::string const& name, std::vector<std::optional<double>> const& values) {
  return column<moxDataMatrixDoubleColumn_internal>(name, values);
}

inline Column texts(std::string const& name,
                    std::vector<std::optional<std::string>> const& values) {
  return column<moxDataMatrixTextColumn_internal>(name, values);
}

inline Column dates(std::string const& name, std::vector<std::optional<datetime_t>> const& values) {
  return column<moxDataMatrixDateColumn_internal>(name, values);
}

inline Column blobs(std::string const& name,
                    std::vector<std::optional<std::string>> const& values) {
  std::vector<std::optional<std::shared_ptr<moxReadBlob>>> made;
  made.reserve(values.size());
  for (auto const& value : values) {
    made.push_back(
        value ? std::optional<std::shared_ptr<moxReadBlob>>(std::make_shared<core::Blob>(*value))
              : std::nullopt);
  }
  return column<moxDataMatrixBlobColumn_internal>(name, made);
}

inline ResultTable result(std::vector<Column> const& columns) {
  ResultTable table;
  for (auto const& one : columns) {
    table.columns.push_back(one);
    table.rowCount = one->numRows();
  }
  return table;
}

/// What a writer writes.
template <class Writer>
std::string written(Writer&& writer) {
  StringSink sink;
  OutputBuffer out(sink);
  writer(out);
  out.flush();
  return sink.text;
}

}  // namespace mox::cli::testing
