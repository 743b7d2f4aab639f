#pragma once

#include <string>

#include "mox/core/plugin_base.h"

class moxJsonValue;
class moxJsonValueObject;

namespace Wt::Http {
class Request;
}  // namespace Wt::Http

/// A resource that the host's web server offers under a path, JSON in and JSON out. The server asks
/// the registry for it by name. One object answers requests of several threads at once, each thread
/// with its own session current.
class moxWebServiceResource : public virtual moxPluginBase {
 public:
  /// The last part of the resource's address, without slashes.
  virtual std::string getPath() const = 0;

  /// Answers one request. `request` is the body that was read, `response` an empty object that the
  /// answer goes into; neither is null, and both die after the call. `path` is what followed the
  /// resource's own path. `httpRequest` is the server's own request object, and only handed
  /// through. A moxError becomes the web answer, its code, where it has one, the HTTP status.
  virtual void handleRequest(moxJsonValue* request, moxJsonValueObject* response, std::string path,
                             Wt::Http::Request const& httpRequest) = 0;

  /// Whether the server must have seen a valid token of a session before handleRequest is called.
  virtual bool validateToken() const = 0;
};
