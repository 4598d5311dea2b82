#include "probes/devices/windows_sockets.h"

#include <cstring>

#include "util/text.h"

namespace hostscope {
namespace {

constexpr WORD kRequestedVersion = MAKEWORD(1, 1);

constexpr std::array<const char*, static_cast<std::size_t>(SocketsFunction::kCount)>
    kSocketsFunctions = {"WSAStartup", "gethostname", "gethostbyname", "WSACleanup", "inet_ntoa"};
using StartupFunction = int(WINAPI*)(WORD requested, WSADATA* data);
using CleanupFunction = int(WINAPI*)();
using HostNameFunction = int(WINAPI*)(char* name, int size);
using HostByNameFunction = hostent*(WINAPI*)(const char* name);
using AddressTextFunction = char*(WINAPI*)(in_addr address);

// What the program makes room for, and what it says so to the library: it may leave a name of that
// length without a terminator.
struct OwnHostName {
  char text[256] = {};
  static constexpr int kRoom = sizeof text - 1;
};

bool GetOwnHostName(const WindowsSocketsState& sockets, OwnHostName& name) {
  return sockets.started && sockets.Get<HostNameFunction>(SocketsFunction::kGetHostName)(
                                name.text, OwnHostName::kRoom) == 0;
}

// What the resolver knows of the host, in the library's own memory; null when that is nothing.
const hostent* ResolveHost(const WindowsSocketsState& sockets, const char* host_name) {
  if (!sockets.started) return nullptr;
  OwnHostName own;
  if (host_name == nullptr) {
    if (!GetOwnHostName(sockets, own)) return nullptr;
    host_name = own.text;
  }
  return sockets.Get<HostByNameFunction>(SocketsFunction::kGetHostByName)(host_name);
}

// Calls append(entry) for each entry of a list of the resolver's, which ends with a null and may be
// null itself, until that answers false; so does this then.
template <typename Append>
bool AppendEach(char* const* entries, Append append) {
  for (; entries != nullptr && *entries != nullptr; ++entries) {
    if (!append(*entries)) return false;
  }
  return true;
}

}  // namespace

bool StartSockets(ProbeContext& context) {
  WindowsSocketsState& sockets = context.sockets;
  if (sockets.started) return true;
  sockets.version[0] = sockets.description[0] = sockets.status[0] = '\0';
  static_assert(sizeof(WSADATA) == 400);
  WSADATA data = {};
  if (!sockets.library.BindLoaded(LoadLibraryA("WSOCK32.DLL"), kSocketsFunctions) ||
      sockets.Get<StartupFunction>(SocketsFunction::kStartup)(kRequestedVersion, &data) != 0) {
    StopSockets(context);
    return false;
  }
  sockets.started = true;
  wsprintfA(sockets.version, "%u.%u", static_cast<unsigned>(LOBYTE(data.wHighVersion)),
            static_cast<unsigned>(HIBYTE(data.wHighVersion)));
  // Of one size, so that the copy of a field without a terminator ends with it.
  static_assert(sizeof sockets.description == sizeof data.szDescription &&
                sizeof sockets.status == sizeof data.szSystemStatus);
  CopyText(sockets.description, data.szDescription);
  CopyText(sockets.status, data.szSystemStatus);
  return true;
}

void StopSockets(ProbeContext& context) {
  WindowsSocketsState& sockets = context.sockets;
  if (sockets.started) sockets.Get<CleanupFunction>(SocketsFunction::kCleanup)();
  sockets.library.Release();
  sockets.started = false;
}

bool ReadHostName(ProbeContext& context, std::span<char> text) {
  OwnHostName own;
  text.front() = '\0';
  if (!GetOwnHostName(context.sockets, own)) return false;
  CopyText(text.data(), text.size(), own.text);
  return true;
}

bool ListHostAliases(const ProbeContext& context, const char* host_name, StringList& aliases) {
  const hostent* const host = ResolveHost(context.sockets, host_name);
  return host != nullptr &&
         AppendEach(host->h_aliases, [&](const char* alias) { return aliases.Append(alias) >= 0; });
}

bool ListHostAddresses(const ProbeContext& context, const char* host_name, StringList& addresses) {
  const hostent* const host = ResolveHost(context.sockets, host_name);
  if (host == nullptr) return false;
  in_addr address = {};
  // Addresses of another kind have no dotted text.
  if (host->h_addrtype != AF_INET || host->h_length != sizeof address) return true;
  const auto text_of = context.sockets.Get<AddressTextFunction>(SocketsFunction::kAddressText);
  return AppendEach(host->h_addr_list, [&](const char* bytes) {
    std::memcpy(&address, bytes, sizeof address);
    const char* const text = text_of(address);
    return text != nullptr && addresses.Append(text) >= 0;
  });
}

}  // namespace hostscope
