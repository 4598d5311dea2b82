#include "platform/host/ole32.h"

#include "platform/host/com_object.h"

namespace host {
namespace {

constexpr const char* kKind = "COM initialisation";

constexpr GUID kDirectMusicClass = {
    0x636B9F10, 0x0C7D, 0x11D1, {0x95, 0xB2, 0x00, 0x20, 0xAF, 0xDC, 0x74, 0x21}};
constexpr GUID kDirectMusic = {
    0x6536115A, 0x7B2D, 0x11D2, {0xBA, 0x18, 0x00, 0x00, 0xF8, 0x75, 0xAC, 0x12}};
constexpr DWORD kFirstWithDirectMusic = 0x601;

class DirectMusic final : public CountedObject<IUnknown> {
 public:
  DirectMusic() : CountedObject("IDirectMusic::QueryInterface") {}

 private:
  bool Has(REFIID interface_id) const override { return interface_id == kDirectMusic; }
  void CheckUse() const override {
    EndUnless(CurrentMachine().com_threads.IsInitialized(),
              "an object of DirectMusic is used where COM is not initialised");
  }
};

const LayerLibrary kLibrary({.name = "OLE32.DLL",
                             .exports = {HOST_EXPORT(CoCreateInstance), HOST_EXPORT(CoInitialize),
                                         HOST_EXPORT(CoUninitialize)}});

}  // namespace
}  // namespace host

using namespace host;

HRESULT WINAPI CoInitialize(LPVOID reserved) {
  if (const auto fault = CallFault("CoInitialize"); fault && *fault < 0) return *fault;
  if (reserved != nullptr) return E_INVALIDARG;
  Machine& machine = CurrentMachine();
  machine.handles.Count(kKind, 1);
  return machine.com_threads.Initialize() ? S_OK : S_FALSE;
}

void WINAPI CoUninitialize() {
  if (CallFails("CoUninitialize")) return;
  Machine& machine = CurrentMachine();
  machine.com_threads.Uninitialize();
  // One too many is seen, too.
  machine.handles.Count(kKind, -1);
}

HRESULT WINAPI CoCreateInstance(REFCLSID class_id, IUnknown* outer, DWORD context,
                                REFIID interface_id, LPVOID* object) {
  const std::optional<HRESULT> fault = CallFault("CoCreateInstance");
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (fault) return *fault;
  Machine& machine = CurrentMachine();
  if (!machine.com_threads.IsInitialized()) return CO_E_NOTINITIALIZED;
  const bool known = class_id == kDirectMusicClass && (context & CLSCTX_INPROC_SERVER) != 0 &&
                     machine.direct_x.release >= kFirstWithDirectMusic;
  if (!known) return REGDB_E_CLASSNOTREG;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  if (interface_id != kDirectMusic && interface_id != kUnknownId) return E_NOINTERFACE;
  return GiveNew<DirectMusic>(object);
}
