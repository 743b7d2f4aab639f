#pragma once

#include <map>
#include <set>
#include <string>

#include "mox/zyn/items/zyn_tools.h"

class zynTools final : public moxZYNTools {
 public:
  std::string name() const override { return "moxZYNTools"; }
  std::map<int, std::string> getDescricoesIds(std::string const& packDescription,
                                              std::set<int> const& ids, int unit, int matrixUnit,
                                              int user) override;
};
