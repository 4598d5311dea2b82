// The set-up library, with device classes and devices of the test's own in the registry of NT.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

constexpr char kClasses[] = "SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr char kDevices[] = "SYSTEM\\CurrentControlSet\\Enum\\HSCONTRACT";
// Sorted as the registry sorts them.
constexpr char kSingle[] = "{A6C5B0A0-0001-4D36-8A11-08002BE10318}";
constexpr char kTwin[] = "{A6C5B0A0-0002-4D36-8A11-08002BE10318}";
constexpr char kOtherTwin[] = "{A6C5B0A0-0003-4D36-8A11-08002BE10318}";

GUID Guid(WORD number) {
  return {0xA6C5B0A0, number, 0x4D36, {0x8A, 0x11, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
}

class SetUpContract : public testing::Test {
 protected:
  SetUpContract() {
    for (const auto& [guid, name] : {std::pair{kSingle, "HostscopeSingle"},
                                     {kTwin, "HostscopeTwin"},
                                     {kOtherTwin, "HostscopeTwin"}}) {
      place.OwnMachineKey(std::string(kClasses) + guid);
      place.SetMachineText(std::string(kClasses) + guid, "Class", name);
    }
    place.OwnMachineKey(kDevices);
    AddDevice("Beta\\0001", kSingle);
    AddDevice("Beta\\0000", kTwin);
    AddDevice("alpha\\5&aa&0", "{a6c5b0a0-0001-4d36-8a11-08002be10318}");
    AddDevice("Gamma\\x", kSingle);
    AddDevice("Gamma\\y", "no class");
    Bind(find_class_, "SetupDiClassGuidsFromNameA");
    Bind(open_set_, "SetupDiGetClassDevsA");
    Bind(enumerate_, "SetupDiEnumDeviceInfo");
    Bind(get_id_, "SetupDiGetDeviceInstanceIdA");
    Bind(destroy_, "SetupDiDestroyDeviceInfoList");
  }
  // Present, as far as the registry can say so.
  void AddDevice(const std::string& id, const std::string& guid) {
    const std::string key = kDevices + ("\\" + id);
    place.SetMachineText(key, "ClassGUID", guid);
    place.SetMachineText(key, "Class", "HostscopeSingle");
    place.SetMachineText(key + "\\Control", "ActiveService", "none");
  }
  template <typename Function>
  void Bind(Function& function, const char* name) {
    function = reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(GetProcAddress(LoadLibraryA("SETUPAPI.DLL"), name)));
    ASSERT_NE(nullptr, function) << name;
  }

  Place place;
  decltype(&SetupDiClassGuidsFromNameA) find_class_;
  decltype(&SetupDiGetClassDevsA) open_set_;
  decltype(&SetupDiEnumDeviceInfo) enumerate_;
  decltype(&SetupDiGetDeviceInstanceIdA) get_id_;
  decltype(&SetupDiDestroyDeviceInfoList) destroy_;
};

TEST_F(SetUpContract, ClassesByName) {
  const struct {
    const char* name;
    DWORD room;
    const char* outcome;
    DWORD number;
    std::vector<WORD> guids;  // the second field of each
  } rows[] = {
      {"HostscopeSingle", 2, "yes", 1, {1}}, {"hostscopeSINGLE", 1, "yes", 1, {1}},
      {"HostscopeSingle", 0, "122", 1, {}},  {"HostscopeTwin", 2, "yes", 2, {2, 3}},
      {"HostscopeTwin", 1, "122", 2, {2}},   {"HostscopeNone", 1, "yes", 0, {}},
      {"HostscopeSingles", 1, "yes", 0, {}}, {"", 1, "yes", 0, {}},
  };
  for (const auto& row : rows) {
    const std::string what = std::string(row.name) + " " + std::to_string(row.room);
    GUID guids[2] = {};
    DWORD number = 77;
    const BOOL found = find_class_(row.name, guids, row.room, &number);
    ExpectAnswer(what, row.outcome, Outcome(found));
    ExpectAnswer(what + ", number", row.number, number);
    for (std::size_t i = 0; i < std::size(guids); ++i) {
      const bool filled = i < row.guids.size();
      ExpectAnswer(what + ", guid", true, guids[i] == (filled ? Guid(row.guids[i]) : GUID{}));
    }
  }
}

TEST_F(SetUpContract, DevicesOfASet) {
  const struct {
    WORD guid;
    std::vector<std::string> ids;
  } rows[] = {{1, {"ALPHA\\5&AA&0", "BETA\\0001", "GAMMA\\X"}}, {2, {"BETA\\0000"}}, {9, {}}};
  for (const auto& row : rows) {
    const GUID guid = Guid(row.guid);
    const HDEVINFO set = open_set_(&guid, nullptr, nullptr, DIGCF_PRESENT);
    ASSERT_NE(INVALID_HANDLE_VALUE, set);
    SP_DEVINFO_DATA device = {};
    for (DWORD i = 0; i < row.ids.size(); ++i) {
      device.cbSize = sizeof device;
      ExpectAnswer(row.ids[i], "yes", Outcome(enumerate_(set, i, &device)));
      ExpectAnswer(row.ids[i] + ", class", true, device.ClassGuid == guid);
      const std::string id = "HSCONTRACT\\" + row.ids[i];
      const DWORD size = static_cast<DWORD>(id.size() + 1);
      for (const DWORD room : std::initializer_list<DWORD>{0, 1, size - 1, size, size + 9}) {
        std::string text(size + 9, '~');
        DWORD needed = 0;
        const BOOL got = get_id_(set, &device, room == 0 ? nullptr : text.data(), room, &needed);
        const std::string what = row.ids[i] + ", room for " + std::to_string(room);
        ExpectAnswer(what, room < size ? "122" : "yes", Outcome(got));
        ExpectAnswer(what + ", needed", size, needed);
        if (got) ExpectAnswer(what + ", id", id, text.c_str());
        if (got) ExpectAnswer(what + ", behind", "~~~~~~~~~", text.substr(size));
      }
    }
    device.cbSize = sizeof device;
    ExpectAnswer("end", "259",
                 Outcome(enumerate_(set, static_cast<DWORD>(row.ids.size()), &device)));
    device.cbSize = sizeof device - 1;
    ExpectAnswer("other record", "1784", Outcome(enumerate_(set, 0, &device)));
    ExpectAnswer("no record", "87", Outcome(enumerate_(set, 0, nullptr)));
    ExpectAnswer("destroyed", "yes", Outcome(destroy_(set)));
    ExpectAnswer("no set", "6", Outcome(enumerate_(INVALID_HANDLE_VALUE, 0, &device)));
    ExpectAnswer("no set to destroy", "6", Outcome(destroy_(INVALID_HANDLE_VALUE)));
  }
}

}  // namespace
}  // namespace contract
