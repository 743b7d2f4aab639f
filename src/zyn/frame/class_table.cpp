#include "zyn/frame/class_table.h"

#include <memory>

#include "mox/core/registry.h"
#include "zyn/datasources/aggregation_data_source.h"
#include "zyn/datasources/column_expression.h"
#include "zyn/datasources/dado_data_source.h"
#include "zyn/datasources/data_source_execution_context.h"
#include "zyn/datasources/data_source_label.h"
#include "zyn/datasources/expression_data_source.h"
#include "zyn/datasources/filter_data_source.h"
#include "zyn/datasources/filter_data_source_spec.h"
#include "zyn/datasources/group_data_source.h"
#include "zyn/datasources/join_data_source.h"
#include "zyn/datasources/manage_filter_data_source.h"
#include "zyn/datasources/object_data_source.h"
#include "zyn/datasources/pivot_data_source.h"
#include "zyn/datasources/sorter_data_source.h"
#include "zyn/datasources/sql_data_source.h"
#include "zyn/datasources/union_data_source.h"
#include "zyn/expressions/expression_context.h"
#include "zyn/expressions/expression_context_utilities.h"
#include "zyn/filters/filter_specifications.h"
#include "zyn/format/date_formatter.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/formatter_property.h"
#include "zyn/format/integral_formatter.h"
#include "zyn/format/properties_collection.h"
#include "zyn/format/text_filter.h"
#include "zyn/format/text_formatter.h"
#include "zyn/frame/plugin_containers.h"
#include "zyn/items/formatter_zyn_item.h"
#include "zyn/items/zyn_cache.h"
#include "zyn/items/zyn_collection.h"
#include "zyn/items/zyn_pack.h"
#include "zyn/items/zyn_session_cache.h"
#include "zyn/items/zyn_tools.h"
#include "zyn/items/zyn_utils.h"
#include "zyn/items/zync_loader_service.h"
#include "zyn/matrix/data_matrix.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/data_matrix_row.h"
#include "zyn/matrix/data_matrix_sorter.h"
#include "zyn/operations/aggregation_functions.h"
#include "zyn/operations/csv_format.h"
#include "zyn/operations/data_matrix_aggregator.h"
#include "zyn/operations/data_matrix_exporter.h"
#include "zyn/operations/data_matrix_expression_processor.h"
#include "zyn/operations/data_matrix_join.h"
#include "zyn/operations/data_matrix_pivoting.h"
#include "zyn/operations/data_matrix_union.h"
#include "zyn/search/search.h"
#include "zyn/search/search_runner.h"
#include "zyn/sql/data_matrix_sql_in_filters.h"
#include "zyn/sql/data_matrix_sql_loader.h"
#include "zyn/sql/data_matrix_sql_range_filters.h"
#include "zyn/sql/data_matrix_sql_unique_filters.h"

namespace {

template <class T>
void internal(moxPluginRegistry& registry, char const* registeredName) {
  registry.registerClass(std::make_unique<moxInternalPluginContainer<T>>(registeredName));
}

template <class T>
void internalStatic(moxPluginRegistry& registry, char const* registeredName) {
  registry.registerClass(std::make_unique<moxInternalStaticPluginContainer<T>>(registeredName));
}

void registerCollections(moxPluginRegistry& registry) {
  internal<zynCollection>(registry, "moxZYNCollection");
  internal<zynPack>(registry, "moxZYNPack");
  internalStatic<zynUtils>(registry, "moxZYNUtils");
  internalStatic<zynCache>(registry, "moxZYNCache");
  registry.registerClass(
      std::make_unique<moxCoreStaticSessionPluginContainer<zynSessionCache>>("moxZYNSessionCache"));
  internalStatic<zynTools>(registry, "moxZYNTools");
  internal<FormatterZynItem>(registry, "moxFormatterZYNItem");
}

void registerMatrix(moxPluginRegistry& registry) {
  internal<DataMatrix>(registry, "moxDataMatrix");
  internal<moxDataMatrixDateColumn_internal>(registry, "moxDataMatrixDateColumn");
  internal<moxDataMatrixDoubleColumn_internal>(registry, "moxDataMatrixDoubleColumn");
  internal<moxDataMatrixIntColumn_internal>(registry, "moxDataMatrixIntColumn");
  internal<moxDataMatrixTextColumn_internal>(registry, "moxDataMatrixTextColumn");
  internal<moxDataMatrixBlobColumn_internal>(registry, "moxDataMatrixBlobColumn");
  internal<DataMatrixRow>(registry, "moxDataMatrixRow");
}

void registerFormatting(moxPluginRegistry& registry) {
  internal<IntegralFormatter>(registry, "moxIntegralFormatter");
  internal<DecimalFormatter>(registry, "moxDecimalFormatter");
  internal<TextFormatter>(registry, "moxTextFormatter");
  internal<TextFilter>(registry, "moxTextFilter");
  internal<DateFormatter>(registry, "moxDateFormatter");
}

void registerSqlLoading(moxPluginRegistry& registry) {
  internal<DataMatrixSQLLoader>(registry, "moxDataMatrixSQLLoader");
  internal<DataMatrixSQLIntegerUniqueFilter>(registry, "moxDataMatrixSQLIntegerUniqueFilter");
  internal<DataMatrixSQLIntegerUniqueSQLFilter>(registry, "moxDataMatrixSQLIntegerUniqueSQLFilter");
  internal<DataMatrixSQLIntegerRangeFilter>(registry, "moxDataMatrixSQLIntegerRangeFilter");
  internal<DataMatrixSQLIntegerInFilter>(registry, "moxDataMatrixSQLIntegerInFilter");
  internal<DataMatrixSQLTextUniqueFilter>(registry, "moxDataMatrixSQLTextUniqueFilter");
  internal<DataMatrixSQLTextRangeFilter>(registry, "moxDataMatrixSQLTextRangeFilter");
  internal<DataMatrixSQLTextInFilter>(registry, "moxDataMatrixSQLTextInFilter");
  internal<DataMatrixSQLDoubleUniqueFilter>(registry, "moxDataMatrixSQLDoubleUniqueFilter");
  internal<DataMatrixSQLDoubleRangeFilter>(registry, "moxDataMatrixSQLDoubleRangeFilter");
  internal<DataMatrixSQLDoubleInFilter>(registry, "moxDataMatrixSQLDoubleInFilter");
  internal<DataMatrixSQLDateUniqueFilter>(registry, "moxDataMatrixSQLDateUniqueFilter");
  internal<DataMatrixSQLDateRangeFilter>(registry, "moxDataMatrixSQLDateRangeFilter");
}

void registerMatrixOperations(moxPluginRegistry& registry) {
  internal<DataMatrixExporter>(registry, "moxDataMatrixExporter");
  internal<DME::CSVFormat>(registry, "moxDataMatrixExporterCSVFormat");
  internal<DataMatrixSorter>(registry, "moxDataMatrixSorter");
  internal<DataMatrixUnion>(registry, "moxDataMatrixUnion");
  internal<DataMatrixPivoting>(registry, "moxDataMatrixPivoting");
  internal<DataMatrixJoin>(registry, "moxDataMatrixJoin");
}

void registerFilterSpecifications(moxPluginRegistry& registry) {
  internal<IntegralUniqueFilter>(registry, "moxIntegralUniqueFilter");
  internal<IntegralUniqueSQLFilter>(registry, "moxIntegralUniqueSQLFilter");
  internal<IntegralRangeFilter>(registry, "moxIntegralRangeFilter");
  internal<IntegralInFilter>(registry, "moxIntegralInFilter");
  internal<TextUniqueFilter>(registry, "moxTextUniqueFilter");
  internal<TextRangeFilter>(registry, "moxTextRangeFilter");
  internal<TextInFilter>(registry, "moxTextInFilter");
  internal<DoubleUniqueFilter>(registry, "moxDoubleUniqueFilter");
  internal<DoubleRangeFilter>(registry, "moxDoubleRangeFilter");
  internal<DoubleInFilter>(registry, "moxDoubleInFilter");
  internal<DateUniqueFilter>(registry, "moxDateUniqueFilter");
  internal<DateRangeFilter>(registry, "moxDateRangeFilter");
}

void registerSearchAndProperties(moxPluginRegistry& registry) {
  internal<moxSE_Runner>(registry, "moxSearchRunner");
  internal<moxSE_Search>(registry, "moxSearch");
  internal<PropertiesCollection>(registry, "moxPropertiesCollection");
  internal<FormatterProperty>(registry, "FormatterProperty");
}

void registerAggregation(moxPluginRegistry& registry) {
  internal<DataMatrixAggregator>(registry, "moxDataMatrixAggregator");
  internal<DoubleSum>(registry, "moxDoubleSum");
  internal<IntegralSum>(registry, "moxIntegralSum");
  internal<DoubleMin>(registry, "moxDoubleMin");
  internal<IntegralMin>(registry, "moxIntegralMin");
  internal<DoubleMax>(registry, "moxDoubleMax");
  internal<IntegralMax>(registry, "moxIntegralMax");
  internal<DoubleAvg>(registry, "moxDoubleAvg");
  internal<IntegralAvg>(registry, "moxIntegralAvg");
  internal<BlobFirst>(registry, "moxBlobFirst");
  internal<BlobLast>(registry, "moxBlobLast");
  internal<TextLast>(registry, "moxTextLast");
  internal<TextFirst>(registry, "moxTextFirst");
  internal<TextMin>(registry, "moxTextMin");
  internal<TextMax>(registry, "moxTextMax");
  internal<TextAppend>(registry, "moxTextAppend");
  internal<TextPrepend>(registry, "moxTextPrepend");
  internal<DateMin>(registry, "moxDateMin");
  internal<DateMax>(registry, "moxDateMax");
}

void registerExpressions(moxPluginRegistry& registry) {
  internal<moxExParser::Context>(registry, "moxExpressionContext");
  internal<moxExParser::ExpressionContextUtilities>(registry, "moxExpressionContextUtilities");
  internal<DataMatrixExpressionProcessor>(registry, "moxDataMatrixExpressionProcessor");
}

void registerDataSources(moxPluginRegistry& registry) {
  internal<SQLDataSource>(registry, "moxSQLDataSource");
  internal<AggregationDataSource>(registry, "moxAggregationDataSource");
  internal<SorterDataSource>(registry, "moxSorterDataSource");
  internal<ObjectDataSource>(registry, "moxObjectDataSource");
  internal<JoinDataSource>(registry, "moxJoinDataSource");
  internal<ExpressionDataSource>(registry, "moxExpressionDataSource");
  internal<ColumnExpression>(registry, "moxColumnExpression");
  internal<DataSourcePivoting>(registry, "moxDataSourcePivoting");
  internal<UnionDataSource>(registry, "moxUnionDataSource");
  internal<DataSourceExecutionContext>(registry, "moxDataSourceExecutionContext");
  internal<FilterDataSource>(registry, "moxFilterDataSource");
  internal<FilterDataSourceSpec>(registry, "moxFilterDataSourceSpec");
  internal<ManageFilterDataSource>(registry, "moxManageFilterDataSource");
  internal<DadoDataSource>(registry, "moxDadoDataSource");
  internal<GroupDataSource>(registry, "moxGroupDataSource");
}

}  // namespace

void registerModuleClasses(moxPluginRegistry& registry) {
  registerCollections(registry);
  registerMatrix(registry);
  registerFormatting(registry);
  registerSqlLoading(registry);
  registerMatrixOperations(registry);
  registerFilterSpecifications(registry);
  registerSearchAndProperties(registry);
  registerAggregation(registry);
  registerExpressions(registry);
  registerDataSources(registry);
  registry.registerService(std::make_unique<ZYNCLoaderService>());
}
