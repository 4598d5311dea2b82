#include "platform/host/ddraw.h"

#include <algorithm>
#include <span>

#include "platform/host/com_object.h"

namespace host {
namespace {

struct InterfaceRow {
  GUID id;
  DWORD since;  // the release that brought it
};

constexpr GUID kDirectDraw7 = {
    0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
constexpr InterfaceRow kDirectDrawInterfaces[] = {
    {{0xB3A6F3E0, 0x2B43, 0x11CF, {0xA2, 0xDE, 0x00, 0xAA, 0x00, 0xB9, 0x33, 0x56}}, 0x200},
    {kDirectDraw7, 0x700},
};
constexpr InterfaceRow kSurfaceInterfaces[] = {
    {{0xDA044E00, 0x69B2, 0x11D0, {0xA1, 0xD5, 0x00, 0xAA, 0x00, 0xB8, 0xDF, 0xBB}}, 0x500},
    {{0x0B2B8630, 0xAD35, 0x11D0, {0x8E, 0xA6, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}}, 0x600},
};

bool IsThere(std::span<const InterfaceRow> rows, REFIID id) {
  const DWORD release = CurrentMachine().direct_x.release;
  return std::any_of(rows.begin(), rows.end(),
                     [&](const InterfaceRow& row) { return row.id == id && release >= row.since; });
}

void CheckLibrary() {
  EndUnless(CurrentMachine().libraries.References("DDRAW.DLL") != 0,
            "an object of DDRAW.DLL is used after the library has been freed");
}

class Surface final : public CountedObject<IDirectDrawSurface> {
 public:
  Surface() : CountedObject("IDirectDrawSurface::QueryInterface") {}

 private:
  bool Has(REFIID interface_id) const override { return IsThere(kSurfaceInterfaces, interface_id); }
  void CheckUse() const override { CheckLibrary(); }
};

class DirectDraw final : public CountedObject<IDirectDraw> {
 public:
  DirectDraw() : CountedObject("IDirectDraw::QueryInterface") {}

  HRESULT SetCooperativeLevel(HWND, DWORD flags) override {
    CheckLibrary();
    if (const auto fault = CallFault("IDirectDraw::SetCooperativeLevel")) return *fault;
    if (flags != DDSCL_NORMAL) return DDERR_INVALIDPARAMS;
    has_level_ = true;
    return DD_OK;
  }
  HRESULT CreateSurface(DDSURFACEDESC* description, IDirectDrawSurface** surface,
                        IUnknown* outer) override {
    CheckLibrary();
    const std::optional<HRESULT> fault = CallFault("IDirectDraw::CreateSurface");
    if (surface == nullptr) return DDERR_INVALIDPARAMS;
    *surface = nullptr;
    if (fault) return *fault;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    if (!has_level_) return DDERR_NOCOOPERATIVELEVELSET;
    if (description == nullptr || description->dwSize != sizeof *description)
      return DDERR_INVALIDPARAMS;
    const bool primary =
        description->dwFlags == DDSD_CAPS && description->ddsCaps.dwCaps == DDSCAPS_PRIMARYSURFACE;
    return primary ? GiveNew<Surface>(surface) : DDERR_INVALIDCAPS;
  }
  HRESULT GetCaps(DDCAPS* of_driver, DDCAPS* of_emulation) override {
    CheckLibrary();
    if (const auto fault = CallFault("IDirectDraw::GetCaps")) return *fault;
    if (of_driver == nullptr || of_emulation != nullptr) return DDERR_INVALIDPARAMS;
    if (of_driver->dwSize != sizeof *of_driver) return DDERR_INVALIDPARAMS;
    // Every driver can move pixels.
    const DWORD three_d = CurrentMachine().direct_x.accelerates_3d ? DDCAPS_3D : 0;
    *of_driver = {.dwSize = sizeof *of_driver, .dwCaps = DDCAPS_BLT | three_d, .other_fields = {}};
    return DD_OK;
  }

 private:
  bool Has(REFIID interface_id) const override {
    return IsThere(kDirectDrawInterfaces, interface_id);
  }
  void CheckUse() const override { CheckLibrary(); }

  bool has_level_ = false;
};

template <typename Interface>
HRESULT Create(std::optional<HRESULT> fault, const GUID* driver, Interface** object,
               const IUnknown* outer) {
  if (object == nullptr) return DDERR_INVALIDPARAMS;
  *object = nullptr;
  if (fault) return *fault;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  if (driver != nullptr) return DDERR_INVALIDDIRECTDRAWGUID;
  return GiveNew<DirectDraw>(object);
}

// The program only looks whether it is there.
HRESULT WINAPI DirectInputCreateA(HMODULE, DWORD, void**, IUnknown*) {
  return CallFault("DirectInputCreateA").value_or(E_INVALIDARG);
}

struct LibraryRow {
  DWORD since;
  const char* name;
  const char* function;  // null: none that the program asks for
  FARPROC address;
};

}  // namespace

void StateDirectX(Machine& machine, DWORD release) {
  const LibraryRow rows[] = {
      {0x100, "DDRAW.DLL", "DirectDrawCreate", Export(&DirectDrawCreate)},
      {0x300, "DINPUT.DLL", "DirectInputCreateA", Export(&DirectInputCreateA)},
      {0x700, "DDRAW.DLL", "DirectDrawCreateEx", Export(&DirectDrawCreateEx)},
      {0x800, "D3D8.DLL", nullptr, nullptr},
  };
  machine.direct_x.release = release;
  for (const LibraryRow& row : rows) {
    if (release < row.since) continue;
    Library library = {.name = row.name};
    if (row.function != nullptr) library.exports.emplace(row.function, row.address);
    machine.libraries.Add(library);
  }
}

}  // namespace host

using host::CallFault;

HRESULT WINAPI DirectDrawCreate(GUID* driver, IDirectDraw** object, IUnknown* outer) {
  return host::Create(CallFault("DirectDrawCreate"), driver, object, outer);
}

HRESULT WINAPI DirectDrawCreateEx(GUID* driver, void** object, REFIID interface_id,
                                  IUnknown* outer) {
  const std::optional<HRESULT> fault = CallFault("DirectDrawCreateEx");
  if (interface_id != host::kDirectDraw7) return DDERR_INVALIDPARAMS;
  return host::Create(fault, driver, object, outer);
}
