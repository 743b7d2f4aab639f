#pragma once

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Root of every failure that a user can mend, or at least must be told of. It is no
/// `std::exception`: whoever stands at a border (program, web, scripts) catches both families.
class moxError {
 public:
  virtual ~moxError() = default;

  /// The sentence for the user. Never empty.
  virtual std::string errorMessage() const = 0;

  /// Further lines: file, line, statement. Empty when there is nothing to add.
  virtual std::vector<std::string> errorDetails() const = 0;

  /// Code of the party that failed (a database server's number, an HTTP status). Empty when there
  /// is none.
  virtual std::string errorCode() const = 0;
};

/// The framework's report that no class is registered under a name.
class moxPluginNotFound : public moxError {};

/// The one implementation of errors: `Base` is moxError or an interface derived from it.
template <class Base>
class moxDefaultErrorImpl : public Base {
  static_assert(std::is_base_of_v<moxError, Base>);

 public:
  explicit moxDefaultErrorImpl(std::string message, std::initializer_list<std::string> details = {})
      : message_(std::move(message)), details_(details) {}

  std::string errorMessage() const override { return message_; }
  std::vector<std::string> errorDetails() const override { return details_; }
  std::string errorCode() const override { return code_; }

 protected:
  /// For subclasses whose failures carry a code.
  void setErrorCode(std::string code) { code_ = std::move(code); }

 private:
  std::string message_;
  std::string code_;
  std::vector<std::string> details_;
};
