#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>

#include "mox/zyn/format/formatter_property.h"
#include "zyn/format/property_base.h"

class FormatterProperty final : public PropertyBase<moxFormatterProperty> {
 public:
  FormatterProperty();

  std::string name() const override { return "FormatterProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;

  bool hasValue() const override { return formatter() != nullptr; }
  void setup(std::string const& name, std::string const& description,
             std::shared_ptr<moxGenericFormatter const>* target, bool allowReplace) override;
  bool allowReplace() const override { return allowReplace_; }
  void setAllowedType(std::type_info const& type) override { allowedType_ = &type; }
  std::type_info const& allowedType() const override { return *allowedType_; }
  void setNewFormatter(std::shared_ptr<moxGenericFormatter const> formatter,
                       bool external) const override;
  std::shared_ptr<moxGenericFormatter const> formatter() const override;
  bool getExterno() const override;

  void detach() override;

 private:
  using Formatter = std::shared_ptr<moxGenericFormatter const>;

  void store(Formatter formatter, bool external) const;
  bool loadReference(moxXMLNode const& reference) const;
  bool loadEmbedded(std::shared_ptr<moxXMLNode> const& element) const;

  Formatter* target_ = nullptr;  // null before setup, and once the owner is gone
  bool allowReplace_ = true;
  std::type_info const* allowedType_;

  // Definitions are shared, and the look-up of an item writes from a constant operation: the lock
  // covers the target and what follows.
  mutable std::mutex mutex_;
  mutable std::string externalName_;
  mutable bool external_ = false;
  mutable bool externalLoaded_ = false;
};
