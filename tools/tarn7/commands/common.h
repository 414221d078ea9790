#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "tools/tarn7/client/service_client.h"
#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/recording/replay.h"

namespace tarn7::tool {

/// The right access for an interface: the library's proxy where it has one, else the stack itself.
std::unique_ptr<ServiceClient> MakeServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance,
                                                 ServiceClient::Changed changed = {});

/// Plays nothing where no recording is named.
Replay ReadReplay(const ReplayOptions& options, const std::vector<FieldAddress>& fields);

/// Throws CommandError (kUsage) where more than one of the options (its name, and whether it does) would read standard
/// input.
void RequireOneReaderOfStandardInput(std::initializer_list<std::pair<const char*, bool>> options);

/// Says on standard error that the instance is offered now.
void ReportOffer(const Interface& interface, std::uint16_t instance);

}  // namespace tarn7::tool
