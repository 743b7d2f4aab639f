#pragma once

#include <memory>

#include "mox/core/date.h"
#include "mox/core/plugin_base.h"

/// The working days of a business unit within a range of dates. Constant, so safe for all threads.
class moxExpediente {
 public:
  virtual ~moxExpediente() = default;

  /// Whether people work on that day; false outside the range and for the empty date.
  virtual bool isWorkingDay(date_t const& day) const = 0;

  /// Working days from `first` to `last`, both included and both within the range; 0 when they are
  /// the wrong way round.
  virtual int workingDays(date_t const& first, date_t const& last) const = 0;
};

/// The working calendar. Registered as "moxExpedienteUtilities" where the host has one. Safe from
/// any thread.
class moxExpedienteUtilities : public virtual moxPluginBase {
 public:
  /// The calendar of `unit` from `start` to `end`, both included; never an empty pointer, and
  /// without working days when the range is empty. With `onlyOwn`, holidays of the head office are
  /// left out. Throws moxError when the calendar cannot be read.
  virtual std::shared_ptr<moxExpediente const> calendar(date_t const& start, date_t const& end,
                                                        bool onlyOwn, int unit) = 0;
};
