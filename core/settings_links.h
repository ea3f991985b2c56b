// The remembered settings of Software.ini and the variables of the running program they
// stand for. Each part that owns a setting links its variable here once; the start
// applies the values read from the file to every linked variable, and the exit collects
// them back before the file is written. A value no part links (the parts of GNSS, base
// maps, cross-sections and DXF output that are not there yet) stays in SoftwareIni as it
// was read and is written back unchanged, so it survives a restart all the same.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "core/software_ini.h"

namespace tavik {

class SettingsLinks {
 public:
  using Apply_ = std::function<void(const SoftwareIni&)>;
  using Collect_ = std::function<void(SoftwareIni&)>;

  // A value kept as it is in a variable of the same type.
  template <class T>
  void Link(T SoftwareIni::*field, T& target) {
    Link([field, &target](const SoftwareIni& s) { target = s.*field; },
         [field, &target](SoftwareIni& s) { s.*field = target; });
  }
  // A boolean of the file kept as an int16 boolean of the tables (0 false, -1 true).
  void Link(bool SoftwareIni::*field, int16_t& target) {
    Link([field, &target](const SoftwareIni& s) { target = s.*field ? -1 : 0; },
         [field, &target](SoftwareIni& s) { s.*field = target != 0; });
  }
  // A value that is converted, or that needs more than an assignment, on the way.
  void Link(Apply_ apply, Collect_ collect) { links_.push_back({std::move(apply), std::move(collect)}); }

  void Apply(const SoftwareIni& ini) const {
    for (const auto& l : links_) l.first(ini);
  }
  void Collect(SoftwareIni& ini) const {
    for (const auto& l : links_) l.second(ini);
  }
  void Clear() { links_.clear(); }

 private:
  std::vector<std::pair<Apply_, Collect_>> links_;
};

}  // namespace tavik
