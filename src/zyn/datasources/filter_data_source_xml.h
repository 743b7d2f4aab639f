#pragma once

class FilterDataSource;
class moxXMLNode;

/// The element of a filter source.
namespace filter_data_source_xml {

/// As FilterDataSource::load.
void read(FilterDataSource& source, moxXMLNode const& node);

void write(FilterDataSource const& source, moxXMLNode& node);

}  // namespace filter_data_source_xml
