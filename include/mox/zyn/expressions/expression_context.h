#pragma once

#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/plugin_base.h"

class moxExpressionFunctionProvider;
class moxExpressionVariableProvider;

/// An arithmetic expression over named values, parsed once and evaluated as often as needed, each
/// time against the current values of the variables. All values are doubles. Operators, from the
/// loosest to the tightest: + and -, then * / %, then ^, which alone works from the right; there is
/// no sign before a value. Functions: floor(x,n), round(x,n), ceil(x,n), abs(x), and those of the
/// providers.
///
/// Registered as "moxExpressionContext", a new one on every call; belongs to one thread.
class moxExpressionContext : public virtual moxPluginBase {
 public:
  /// What a division by zero throws.
  class DivByZero : public moxError {};

  /// Adds a provider of variables, asked after those before it. Null is ignored. The provider stays
  /// the caller's and must outlive the context.
  virtual void addDataProvider(moxExpressionVariableProvider* provider) = 0;

  /// The same for functions. The context's own functions are asked first, so that a provider cannot
  /// redefine them.
  virtual void addFunctionProvider(moxExpressionFunctionProvider* provider) = 0;

  /// Takes over an expression in place of the one before. False when it is none, with the reason in
  /// getError(); what was understood up to there is kept, and exec runs it. The empty text is an
  /// expression without a value. Throws only what a provider throws; the context then holds what
  /// was understood before that.
  virtual bool parse(std::string const& text) = 0;

  /// Why the last parse gave false, for the user; empty when it did not.
  virtual std::string getError() const = 0;

  /// The value: what lies on top of the stack once all operations ran, or the first of them failed.
  /// `*ok` tells whether there is one; without one the result is 0.0. `ok` may be null. Throws
  /// moxDefaultErrorImpl<DivByZero> "Divisão por zero.", and what the operations of providers
  /// throw.
  virtual double exec(bool* ok) = 0;

  /// The providers in the order in which they are asked, the context's own among them.
  virtual std::vector<moxExpressionVariableProvider*> getDataProvider() const = 0;
  virtual std::vector<moxExpressionFunctionProvider*> getFunctionProvider() const = 0;
};
