// The keys of machine.ini that describe the sockets library and the hosts that it resolves.
#include "platform/host/fact.h"

namespace host {
namespace {

using std::string_view;

// "2.2".
std::string ReadSocketsVersion(Machine& machine, string_view, string_view value) {
  const std::optional<WORD> major = TakeNumber(value, '.');
  const std::optional<WORD> minor = major ? TakeNumber(value, '\0') : std::nullopt;
  if (!minor || *major > 0xFF || *minor > 0xFF) return "the value is no version (2.2)";
  machine.network.version = MAKEWORD(*major, *minor);
  return "";
}

std::optional<InternetAddress> ParseAddress(string_view text) {
  InternetAddress address;
  for (std::size_t i = 0; i < address.size(); ++i) {
    const std::optional<WORD> byte = TakeNumber(text, i + 1 < address.size() ? '.' : '\0');
    if (!byte || *byte > 0xFF) return std::nullopt;
    address[i] = static_cast<BYTE>(*byte);
  }
  return address;
}

// The key is the host's name; "10.0.0.1, 10.0.1.1 also alias, alias".
std::string ReadHost(Machine& machine, string_view key, string_view value) {
  constexpr string_view kAlso = "also ";
  NetworkHost host{std::string(key), {}, {}};
  string_view aliases;
  if (const std::size_t also = value.find(kAlso); also != string_view::npos) {
    aliases = value.substr(also + kAlso.size());
    value = value.substr(0, also);
  }
  while (!value.empty()) {
    const std::optional<InternetAddress> address = ParseAddress(TakeItem(value, ','));
    if (!address) return "the value does not begin with addresses (10.0.0.1)";
    host.addresses.push_back(*address);
  }
  while (!aliases.empty())
    host.aliases.emplace_back(TakeItem(aliases, ','));
  machine.network.hosts.push_back(std::move(host));
  return "";
}

constexpr Fact kNetworkFacts[] = {
    {"Sockets", "Version", ReadSocketsVersion},
    {"Sockets", "Description", Read<&Machine::network, &Network::description>},
    {"Sockets", "Status", Read<&Machine::network, &Network::status>},
    {"Sockets", "HostName", Read<&Machine::network, &Network::host_name>},
    {"Hosts", "*", ReadHost},
};

}  // namespace

std::span<const Fact> NetworkFacts() {
  return kNetworkFacts;
}

}  // namespace host
