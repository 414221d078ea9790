#include "interfaces/interface_list.h"
#include "tools/tarn7/model/make_interface.h"

namespace tarn7::tool {

void AddConsumedInterfaces(std::vector<Interface>& interfaces) {
  AddInterfaces(kro::services::ConsumedInterfaces{}, interfaces);
}

}  // namespace tarn7::tool
