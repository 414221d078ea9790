#pragma once

#include <cstddef>

#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// One instance of an interface, offered as an application does it: through the library. Destruction withdraws it.
class OfferedService {
 public:
  virtual ~OfferedService() = default;

  /// Gives a field, by its place in the interface, a value; from any thread. Throws ValueError for JSON that is none.
  virtual void Update(std::size_t field, const Json& value) = 0;
  /// Throws ValueError, with the library's own text, when a field has no value yet.
  virtual void Offer() = 0;
};

}  // namespace tarn7::tool
