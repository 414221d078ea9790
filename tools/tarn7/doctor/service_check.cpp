#include <map>
#include <set>
#include <stdexcept>

#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/stack/instance_search.h"

namespace tarn7::tool {

namespace {

constexpr const char* kCheck = "services";

using Instances = std::map<std::uint16_t, bool>;  // those that are offered, and whether in the right version

Finding Judge(const Interface& interface, const Instances& instances) {
  if (instances.empty()) {
    return Finding::Warning(kCheck, interface.name + " is not offered",
                            interface.IsProvided() && interface.IsOfLibrary()
                                ? "start the application, or tarn7 offer " + interface.name + " --values FILE"
                                : "start the vehicle, or tarn7 simulate " + interface.name);
  }
  std::string list;
  for (const auto& [instance, fits] : instances) {
    list += (list.empty() ? "" : ", ") + std::to_string(instance);
    if (!fits) {
      return Finding::Problem(kCheck,
                              interface.name + ", instance " + std::to_string(instance) +
                                  ", is offered, but not in version " + std::to_string(interface.major_version),
                              "have library and provider built from the same version of the interface");
    }
  }
  return Finding::Ok(kCheck, interface.name + " is offered: instance " + list);
}

std::map<const Interface*, Instances> Search(const InterfaceTable& table, std::chrono::milliseconds time) {
  std::map<const Interface*, Instances> found;
  std::vector<const Interface*> interfaces;
  for (const Interface& interface : table.All()) {
    interfaces.push_back(&interface);
  }
  Loop loop;
  const InstanceSearch search(loop, interfaces, [&found](const InstanceChange& change) {
    if (change.found) {
      found[&change.interface][change.instance] = change.has_right_version;
    } else {
      found[&change.interface].erase(change.instance);
    }
  });
  loop.RunUntil(Loop::Clock::now() + time, [] { return false; });
  return found;
}

}  // namespace

void CheckServices(const InterfaceTable& interfaces, std::chrono::milliseconds time, Findings& findings) {
  try {
    auto found = Search(interfaces, time);
    for (const Interface& interface : interfaces.All()) {
      findings.push_back(Judge(interface, found[&interface]));
    }
  } catch (const std::runtime_error& error) {
    findings.push_back(Finding::Problem(kCheck, error.what(),
                                        "settle the problems above; what the stack itself says is on standard error"));
  }
}

}  // namespace tarn7::tool
