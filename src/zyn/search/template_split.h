#pragma once

#include <string>
#include <vector>

/// A template taken apart: its text with "?" for each placeholder, and the placeholders in order.
struct SplitTemplate {
  std::string text;
  std::vector<std::string> columns;
};

/// Takes apart a template in which columns stand between "{{" and "}}". What stands behind the last
/// of these marks is not part of the text; an empty placeholder counts as none.
SplitTemplate splitTemplate(std::string const& text);
