#include "platform/host/wsock32.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"
#include "platform/host/record_text.h"

using namespace host;

namespace {

// By their own types, since the C library has functions of these names as well.
using HostNameFunction = int(char*, int);

const LayerLibrary kLibrary({.name = "WSOCK32.DLL",
                             .exports = {HOST_EXPORT(WSAStartup),
                                         HOST_EXPORT(WSACleanup),
                                         {"gethostname", Export<HostNameFunction>(&gethostname)},
                                         HOST_EXPORT(gethostbyname),
                                         HOST_EXPORT(inet_ntoa)}});

constexpr const char* kKind = "started sockets";

int Failed(int error) {
  SetLastError(static_cast<DWORD>(error));
  return SOCKET_ERROR;
}

// Compared as versions are: by the low byte, then by the high one.
WORD LowerVersion(WORD first, WORD second) {
  const auto rank = [](WORD version) { return MAKEWORD(HIBYTE(version), LOBYTE(version)); };
  return rank(first) < rank(second) ? first : second;
}

// What gethostbyname answers, with the memory behind it.
class Answer {
 public:
  hostent* Fill(const NetworkHost& host) {
    host_ = host;
    aliases_.clear();
    for (std::string& alias : host_.aliases)
      aliases_.push_back(alias.data());
    addresses_.clear();
    for (InternetAddress& address : host_.addresses)
      addresses_.push_back(reinterpret_cast<char*>(address.data()));
    aliases_.push_back(nullptr);
    addresses_.push_back(nullptr);
    record_ = {host_.name.data(), aliases_.data(), AF_INET, sizeof(InternetAddress),
               addresses_.data()};
    return &record_;
  }

 private:
  NetworkHost host_;
  std::vector<char*> aliases_, addresses_;
  hostent record_ = {};
};

}  // namespace

int WINAPI WSAStartup(WORD requested, LPWSADATA data) {
  EndThreadIfProcessEnded();
  if (const DWORD error = CallError("WSAStartup")) return static_cast<int>(error);
  Machine& machine = CurrentMachine();
  Network& network = machine.network;
  data->wVersion = LowerVersion(requested, network.version);
  data->wHighVersion = network.version;
  FillField(data->szDescription, network.description);
  FillField(data->szSystemStatus, network.status);
  ++network.times_started;
  machine.handles.Count(kKind, 1);
  return 0;
}

int WINAPI WSACleanup() {
  if (CallFails("WSACleanup")) return SOCKET_ERROR;
  Machine& machine = CurrentMachine();
  if (machine.network.times_started == 0) return Failed(WSANOTINITIALISED);
  --machine.network.times_started;
  machine.handles.Count(kKind, -1);
  return 0;
}

int WINAPI gethostname(char* name, int size) {
  if (EndableCallFails("gethostname")) return SOCKET_ERROR;
  const Network& network = CurrentMachine().network;
  if (network.times_started == 0) return Failed(WSANOTINITIALISED);
  if (!network.host_name) return Failed(WSASYSNOTREADY);
  const std::string& own = *network.host_name;
  if (name == nullptr || size < 0 || static_cast<std::size_t>(size) <= own.size())
    return Failed(WSAEFAULT);
  std::memcpy(name, own.c_str(), own.size() + 1);
  return 0;
}

hostent* WINAPI gethostbyname(const char* name) {
  if (EndableCallFails("gethostbyname")) return nullptr;
  const Network& network = CurrentMachine().network;
  const auto is_named =
      [wanted = std::string_view(name == nullptr ? "" : name)](const NetworkHost& host) {
        return EqualNoCase(host.name, wanted) ||
               std::any_of(host.aliases.begin(), host.aliases.end(),
                           [&](const std::string& alias) { return EqualNoCase(alias, wanted); });
      };
  const auto found = std::find_if(network.hosts.begin(), network.hosts.end(), is_named);
  if (network.times_started == 0 || found == network.hosts.end()) {
    Failed(network.times_started == 0 ? WSANOTINITIALISED : WSAHOST_NOT_FOUND);
    return nullptr;
  }
  thread_local Answer answer;
  return answer.Fill(*found);
}

char* WINAPI inet_ntoa(in_addr address) {
  if (CallFails("inet_ntoa")) return nullptr;
  BYTE bytes[sizeof address.s_addr];
  std::memcpy(bytes, &address.s_addr, sizeof bytes);
  thread_local char text[16];
  std::snprintf(text, sizeof text, "%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
  return text;
}
