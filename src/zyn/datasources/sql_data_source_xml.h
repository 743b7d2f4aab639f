#pragma once

class SQLDataSource;
class XmlElement;
class moxXMLNode;

/// The element of a SQL source.
namespace sql_data_source_xml {

/// As SQLDataSource::load.
void read(SQLDataSource& source, XmlElement const& node);

void write(SQLDataSource const& source, moxXMLNode& node);

}  // namespace sql_data_source_xml
