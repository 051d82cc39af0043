// The arrays of the state are indexed by the signed counts the files and the
// windows work in; At turns such a count into a vector index.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessiva {

constexpr size_t At(int64_t i) { return static_cast<size_t>(i); }

}  // namespace tessiva
