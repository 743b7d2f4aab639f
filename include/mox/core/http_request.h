#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxReadBlob;

/// A piece of work that is described first and done by an executor. Belongs to one thread at a
/// time.
class moxJob : public virtual moxPluginBase {
 public:
  /// Does the work and blocks until it ended. Called by executors.
  virtual void run() = 0;
};

/// A request to a web server. Registered as "moxHTTPRequest"; made anew for each request.
class moxHTTPRequest : public virtual moxJob {
 public:
  class InlineExecutor;

  /// The numbers are part of the interface.
  enum class Method { kGet = 1, kPost = 2, kPut = 3, kDelete = 4 };

  /// Where the request goes. Must be set before it runs.
  virtual void setURL(std::string const& url, Method method) = 0;

  /// Adds one header line, "Name: value". Throws moxError for a line with a line break in it or
  /// without a name.
  virtual void addHeader(std::string const& line) = 0;

  /// The bytes to send, shared with the caller, who does not change them while the request runs.
  /// Empty for none.
  virtual void setBody(std::shared_ptr<moxReadBlob const> body) = 0;

  /// File with the certificates that a server's own is tested against; a relative path starts at
  /// the application's directory. Without it, and for plain http, the system's ones are used.
  virtual void setCertificateFile(std::string const& path) = 0;

  /// What came of the last run. The status is the server's, 0 when it gave none; the reply is never
  /// an empty pointer; the failure is a sentence, empty when the server answered.
  virtual int status() const = 0;
  virtual std::shared_ptr<moxReadBlob> reply() const = 0;
  virtual std::string failure() const = 0;
};

/// Runs requests in the calling thread. Registered as "moxHTTPRequestInlineExecutor". Safe from any
/// thread.
class moxHTTPRequest::InlineExecutor : public virtual moxPluginBase {
 public:
  /// Sends the request, waits, and gives the reply's bytes; never an empty pointer. The blob is
  /// empty when the server could not be reached, broke off, took too long, or answered with a
  /// status other than 2xx: the request tells which. Throws moxError for a request without a
  /// usable URL.
  virtual std::shared_ptr<moxReadBlob> execute(std::shared_ptr<moxHTTPRequest> const& request) = 0;
};
