#include "interfaces/interface_list.h"
#include "tools/tarn7/model/make_interface.h"

namespace tarn7::tool {

void AddProvidedInterfaces(std::vector<Interface>& interfaces) {
  AddInterfaces(kro::services::ProvidedInterfaces{}, interfaces);
}

}  // namespace tarn7::tool
