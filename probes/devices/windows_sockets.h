// Windows Sockets, kept in the probe context between their start and their stop.
#pragma once

#include <span>

#include "report/probe_context.h"
#include "util/string_list.h"

namespace hostscope {

// Loads the library, starts it and keeps what it tells of itself. True when the sockets are started
// afterwards, also when they have been before; else nothing of them is kept, and the library is not
// loaded.
bool StartSockets(ProbeContext& context);

// Ends what StartSockets has begun and releases the library; the texts stay. Nothing happens when
// the library is not loaded.
void StopSockets(ProbeContext& context);

// This host's own name. False, the text empty, when the sockets are not started or don't tell it.
bool ReadHostName(ProbeContext& context, std::span<char> text);

// These append to a list that is present what the resolver knows of the host; a null name is this
// host. False when the sockets are not started, the host can't be resolved or memory runs out; a
// host of whom nothing is known to append is a success.

// The host's further names.
bool ListHostAliases(const ProbeContext& context, const char* host_name, StringList& aliases);

// The host's addresses, as dotted text; false, too, when the library has no text for one.
bool ListHostAddresses(const ProbeContext& context, const char* host_name, StringList& addresses);

}  // namespace hostscope
