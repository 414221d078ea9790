#include "tools/tarn7/commands/common.h"

#include <iostream>

#include "tools/tarn7/error.h"
#include "tools/tarn7/library/proxy_service_client.h"
#include "tools/tarn7/stack/stack_service_client.h"
#include "tools/tarn7/values/counted.h"

namespace tarn7::tool {

std::unique_ptr<ServiceClient> MakeServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance,
                                                 ServiceClient::Changed changed) {
  if (interface.IsOfLibrary() && !interface.IsProvided()) {
    return std::make_unique<ProxyServiceClient>(loop, interface, instance, std::move(changed));
  }
  return std::make_unique<StackServiceClient>(loop, interface, instance, std::move(changed));
}

Replay ReadReplay(const ReplayOptions& options, const std::vector<FieldAddress>& fields) {
  return options.file.empty() ? Replay() : Replay(options.file, fields, options.speed);
}

void RequireOneReaderOfStandardInput(std::initializer_list<std::pair<const char*, bool>> options) {
  std::string readers;
  std::size_t count = 0;
  for (const auto& [name, reads] : options) {
    if (reads) {
      readers += (count++ == 0 ? "" : " and ") + std::string(name);
    }
  }
  if (count > 1) {
    throw CommandError(Status::kUsage, readers + " would both read standard input");
  }
}

void ReportOffer(const Interface& interface, std::uint16_t instance) {
  std::cerr << "offering " << interface.name << ", instance " << instance << ": service 0x" << std::hex
            << interface.service_id << std::dec << ", version " << static_cast<int>(interface.major_version) << '.'
            << interface.minor_version << ", " << Counted(interface.fields.size(), "field") << std::endl;
}

}  // namespace tarn7::tool
