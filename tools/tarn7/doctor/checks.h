#pragma once

#include <chrono>

#include "tools/tarn7/doctor/finding.h"
#include "tools/tarn7/doctor/stack_configuration.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

// Each looks at one thing that must be right before applications find each other, and adds what it found.

/// Whether the configured address belongs to this machine, and its interface is up.
void CheckUnicast(const StackConfiguration& configuration, Findings& findings);
/// Whether a message to the discovery group comes back. It does not leave the machine, and no node acts on it.
void CheckMulticast(const StackConfiguration& configuration, Findings& findings);
/// Whether the ports of discovery and services can be had, and who holds them.
void CheckPorts(const StackConfiguration& configuration, Findings& findings);
/// Whether the routing of vsomeip3 has a host, and what an earlier one has left behind.
void CheckRoutingHost(const StackConfiguration& configuration, Findings& findings);
/// Whether the stack starts, and which services are offered within that time. Throws Interrupted.
void CheckServices(const InterfaceTable& interfaces, std::chrono::milliseconds time, Findings& findings);

}  // namespace tarn7::tool
