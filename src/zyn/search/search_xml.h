#pragma once

#include <memory>

class moxSE_Search;
class moxXMLNode;

/// The element of a search.
namespace search_xml {

/// As moxSE_Search::load. The node is shared because it may be the element of the source as well.
void read(moxSE_Search& search, std::shared_ptr<moxXMLNode> const& node);

void write(moxSE_Search const& search, moxXMLNode& node);

}  // namespace search_xml
