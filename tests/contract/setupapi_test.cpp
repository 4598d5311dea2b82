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
  constexpr struct {
    const char* name;
    const char* outcome;
    DWORD number;
    WORD guid;  // the second field of it; 0: none
  } kRows[] = {{"HostscopeSingle", "yes", 1, 1},
               {"hostscopeSINGLE", "yes", 1, 1},
               {"HostscopeTwin", "122", 2, 2},
               {"HostscopeNone", "yes", 0, 0},
               {"HostscopeSingles", "yes", 0, 0}};
  for (const auto& row : kRows) {
    GUID guid = {};
    DWORD number = 77;
    ExpectAnswer(row.name, row.outcome, Outcome(find_class_(row.name, &guid, 1, &number)));
    ExpectAnswer(row.name + std::string(", number"), row.number, number);
    ExpectAnswer(row.name + std::string(", guid"), true,
                 guid == (row.guid == 0 ? GUID{} : Guid(row.guid)));
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
    device.cbSize = sizeof device;
    for (DWORD i = 0; i < row.ids.size(); ++i) {
      const std::string id = "HSCONTRACT\\" + row.ids[i];
      ExpectAnswer(id, "yes", Outcome(enumerate_(set, i, &device)));
      DWORD size = 0;
      ExpectAnswer(id + ", no room", "122", Outcome(get_id_(set, &device, nullptr, 0, &size)));
      ExpectAnswer(id + ", size", static_cast<long long>(id.size() + 1), size);
      std::string text(size, '~');
      ExpectAnswer(id + ", room", "yes",
                   Outcome(get_id_(set, &device, text.data(), size, nullptr)));
      ExpectAnswer(id + ", text", id, text.c_str());
    }
    ExpectAnswer("end", "259",
                 Outcome(enumerate_(set, static_cast<DWORD>(row.ids.size()), &device)));
    ExpectAnswer("destroyed", "yes", Outcome(destroy_(set)));
  }
}

}  // namespace
}  // namespace contract
