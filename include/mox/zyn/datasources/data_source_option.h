#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxDataSourceOptionData;
class moxXMLNode;

/// A choice that a source offers to whoever runs it. Part of the definition, and as constant.
class moxDataSourceOption : public virtual moxPluginBase {
 public:
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// The heading under which a user sees the choice.
  virtual std::string getName() const = 0;

  /// The registered name of the component with which he answers.
  virtual std::string getVisualRepresentation() const = 0;

  /// A new answer, to be filled in.
  virtual std::shared_ptr<moxDataSourceOptionData> createOptionData() const = 0;
};

/// The user's answer to an option, of the kind that the option makes. Belongs to one run.
class moxDataSourceOptionData : public virtual moxPluginBase {};
