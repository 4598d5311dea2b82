// The items of the network section.
#pragma once

#include <span>

#include "report/item.h"

namespace hostscope {

// The items. The sockets are started and stopped by steps of the section.
void StartSocketsForSection(ItemRun& run);
void StopSocketsOfSection(ItemRun& run);
bool WriteWindowsSockets(ItemRun& run);
bool ReadDomainName(ProbeContext& context, std::span<char> text);
bool WriteHostAliases(ItemRun& run);
bool WriteHostAddresses(ItemRun& run);
bool WriteNetClients(ItemRun& run);
bool WriteNetServices(ItemRun& run);
// The name of the mail client in the registry, else "none"; never fails.
bool ReadDefaultEmailClient(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
