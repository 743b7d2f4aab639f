#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "cli/output/csv_fields.h"
#include "mox/zyn/matrix/data_matrix_exporter_format.h"

namespace mox::cli {

/// Comma-separated text that every reader of such texts understands: a header line, lines ended by
/// "\n", quotes where a text needs them. A null is an empty field and an empty text is "", so that
/// the two stay apart; a date that is none counts as a null. The module's own format writes values
/// as they stand, which a comma in a name would break. Serves one export, in one thread.
class CsvFormat final : public moxDataMatrixExporterFormat {
 public:
  static constexpr char const* kRegisteredName = "zynCsvFormat";
  static constexpr unsigned int kAllRows = std::numeric_limits<unsigned int>::max();

  struct Choices {
    CsvOptions fields = {};
    unsigned int rowLimit = kAllRows;
    std::function<void(std::int64_t rowsWritten)> onRows = {};  // told now and then; may be empty
  };

  std::string name() const override { return kRegisteredName; }

  /// There are no settings to keep: only an empty node is refused.
  bool save(std::shared_ptr<moxXMLNode> node) const override { return node != nullptr; }
  bool load(std::shared_ptr<moxXMLNode> node) override { return node != nullptr; }

  /// Nothing is asked of the exporter: its columns bring their texts.
  void setParentExporter(std::weak_ptr<moxDataMatrixExporter const> /*exporter*/) override {}

  /// Has the export written to `out`, which outlives it, in place of a file.
  void setOutput(OutputBuffer& out) { out_ = &out; }
  void setChoices(Choices choices) { choices_ = std::move(choices); }

  /// Writes to the output that was set; without one, a file of that name that is there in full or
  /// not at all. Throws moxError when the place cannot be written.
  void exportToFile(std::string const& fileName,
                    std::shared_ptr<moxDataMatrixExporterRow> row) const override;

 private:
  void write(OutputBuffer& out, moxDataMatrixExporterRow& row) const;

  OutputBuffer* out_ = nullptr;
  Choices choices_;
};

}  // namespace mox::cli
