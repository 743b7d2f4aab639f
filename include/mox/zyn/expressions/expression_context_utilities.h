#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

/// Looks at the text of an expression without parsing it. Registered as
/// "moxExpressionContextUtilities"; safe from any thread.
class moxExpressionContextUtilities : public virtual moxPluginBase {
 public:
  /// Appends the tokens of a text: whether each is a number, and its text. White space parts tokens
  /// and is dropped; each of ( ) + - * / % , ^ is a token by itself, and left out with
  /// `skipSeparators`. A token that begins with a digit or a point is a number, goes on through
  /// digits and points, and is not checked any further; any other runs to the next white space or
  /// separator.
  virtual void tokenize(std::string const& text, std::vector<std::pair<bool, std::string>>& tokens,
                        bool skipSeparators) const = 0;

  /// Appends the names of variables and functions in a text, each once, in order of first
  /// appearance; a name that `names` already holds is not appended again.
  virtual void getVariablesFunctionsName(std::string const& text,
                                         std::vector<std::string>& names) const = 0;
};
