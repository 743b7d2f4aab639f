#pragma once

#include "mox/core/plugin_base.h"

/// A control of a filter form, with which a user enters what he looks for. The form tests a control
/// against the interface that the filter accepts, through its type.
class moxFilterElement : public virtual moxPluginBase {};

/// The interfaces tell what a control yields: one value, a range with one or both ends open, or a
/// list of values.
class moxIntegralUniqueFilterControl : public virtual moxFilterElement {};
class moxIntegralRangeFilterControl : public virtual moxFilterElement {};
class moxIntegralInFilterControl : public virtual moxFilterElement {};

class moxDoubleUniqueFilterControl : public virtual moxFilterElement {};
class moxDoubleRangeFilterControl : public virtual moxFilterElement {};
class moxDoubleInFilterControl : public virtual moxFilterElement {};

class moxTextUniqueFilterControl : public virtual moxFilterElement {};
class moxTextRangeFilterControl : public virtual moxFilterElement {};
class moxTextInFilterControl : public virtual moxFilterElement {};

class moxDateUniqueFilterControl : public virtual moxFilterElement {};
class moxDateRangeFilterControl : public virtual moxFilterElement {};
