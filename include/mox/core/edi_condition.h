#pragma once

#include "mox/core/plugin_base.h"

/// A condition of an EDI record, made by the application that edits models. The record only keeps
/// it and hands it out; writing a file does not ask it.
class moxCondicaoRegistroEDI : public virtual moxPluginBase {};
