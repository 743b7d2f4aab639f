#pragma once

#include <string>

/// A part of a module that is started and stopped with the application. The registry owns it. Calls
/// come from the thread that starts and stops the application, never from two threads at once.
class moxServiceBase {
 public:
  /// How a service wants to be run; the host asks verifyProperties for each kind that it knows.
  enum Properties {
    kManual = 0,                // started by an operator's command
    kOnDemand = 1,              // started when first asked for
    kPeriodic = 2,              // started again and again
    kStartsWithApplication = 3  // started once before the first session, stopped after the last
  };

  virtual ~moxServiceBase() = default;

  virtual std::string name() const = 0;

  /// Called at most once before stop(). Throws moxError when the service cannot do its work.
  virtual void start() = 0;

  /// Called once for each start() that returned.
  virtual void stop() = 0;

  /// Whether start() may be called now.
  virtual bool canStart() = 0;

  /// Whether the service is of the kind asked for.
  virtual bool verifyProperties(Properties properties) = 0;

  /// The library that brought the service; set once by the registry.
  virtual void setParentLibraryName(std::string const& libraryName) = 0;
  virtual std::string getParentLibraryName() const = 0;
};
