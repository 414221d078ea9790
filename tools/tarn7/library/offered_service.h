#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tools/tarn7/model/interface.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// One instance of an interface, offered as an application does it: through the library. Destruction withdraws it.
class OfferedService {
 public:
  virtual ~OfferedService() = default;

  /// Gives a field a value, which is one of it; from any thread. Throws ValueError where the stack cannot send it.
  virtual void Update(const std::string& field, const Payload& value) = 0;
  /// Throws ValueError, with the library's own text, when a field has no value yet.
  virtual void Offer() = 0;
};

/// The library's skeleton of an interface that it provides.
std::unique_ptr<OfferedService> MakeSkeleton(const Interface& interface, std::uint16_t instance);

}  // namespace tarn7::tool
