// The store of a window's virtual gauges as the data and side files see it:
// numbered from 1, with holes where a gauge was removed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessiva {

struct Gage {
  std::string name;
  int32_t type = 0;  // 0 gauge, 1 rosette, 2 slider
  int32_t xdep = 0, ydep = 0, xarr = 0, yarr = 0;
};

class GageStore {
 public:
  // The highest gauge number in use (what [GAGES] Number holds).
  int32_t Count() const { return static_cast<int32_t>(gages_.size()); }
  bool Exists(int32_t number) const {
    return number >= 1 && number <= Count() && gages_[static_cast<size_t>(number - 1)].has_value();
  }
  const Gage& Get(int32_t number) const { return *gages_[static_cast<size_t>(number - 1)]; }
  Gage& Get(int32_t number) { return *gages_[static_cast<size_t>(number - 1)]; }
  // Adds a gauge under the next number and returns that number.
  int32_t Add(Gage gage) {
    gages_.emplace_back(std::move(gage));
    return Count();
  }
  void Remove(int32_t number) {
    if (Exists(number)) gages_[static_cast<size_t>(number - 1)].reset();
    while (!gages_.empty() && !gages_.back()) gages_.pop_back();
  }
  void Clear() { gages_.clear(); }

 private:
  std::vector<std::optional<Gage>> gages_;
};

}  // namespace tessiva
