#include "probes/devices/directx.h"

#include "util/com_object.h"
#include "util/library.h"
#include "util/number_text.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr GUID IID_IDirectDraw2 = {
    0xB3A6F3E0, 0x2B43, 0x11CF, {0xA2, 0xDE, 0x00, 0xAA, 0x00, 0xB9, 0x33, 0x56}};
constexpr GUID IID_IDirectDrawSurface3 = {
    0xDA044E00, 0x69B2, 0x11D0, {0xA1, 0xD5, 0x00, 0xAA, 0x00, 0xB8, 0xDF, 0xBB}};
constexpr GUID IID_IDirectDrawSurface4 = {
    0x0B2B8630, 0xAD35, 0x11D0, {0x8E, 0xA6, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
constexpr GUID CLSID_DirectMusic = {
    0x636B9F10, 0x0C7D, 0x11D1, {0x95, 0xB2, 0x00, 0x20, 0xAF, 0xDC, 0x74, 0x21}};
constexpr GUID IID_IDirectMusic = {
    0x6536115A, 0x7B2D, 0x11D2, {0xBA, 0x18, 0x00, 0x00, 0xF8, 0x75, 0xAC, 0x12}};
constexpr GUID IID_IDirectDraw7 = {
    0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};

using DirectDrawCreateFunction = HRESULT(WINAPI*)(GUID* driver, IDirectDraw** made,
                                                  IUnknown* outer);
using DirectDrawCreateExFunction = HRESULT(WINAPI*)(GUID* driver, void** made, REFIID interface_id,
                                                    IUnknown* outer);

// COM on this thread, from its initialisation on until the object goes.
class ComSession {
 public:
  ComSession() {
    started_ = ole_.Bind("OLE32.DLL", kFunctions) &&
               SUCCEEDED(ole_.Get<HRESULT(WINAPI*)(void*)>(kInitialize)(nullptr));
  }
  ~ComSession() {
    if (started_) ole_.Get<void(WINAPI*)()>(kUninitialize)();
  }
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

  bool CreateInProcess(ComObject<IUnknown>& object, const CLSID& class_id,
                       const IID& interface_id) const {
    if (!started_) return false;
    using Function =
        HRESULT(WINAPI*)(REFCLSID, IUnknown * outer, DWORD context, REFIID, void** made);
    void* made = nullptr;
    const HRESULT result = ole_.Get<Function>(kCreateInstance)(
        class_id, nullptr, CLSCTX_INPROC_SERVER, interface_id, &made);
    return object.Take(result, static_cast<IUnknown*>(made));
  }

 private:
  static constexpr std::array<const char*, 3> kFunctions = {"CoInitialize", "CoUninitialize",
                                                            "CoCreateInstance"};
  enum Row { kInitialize, kUninitialize, kCreateInstance };

  BoundLibrary<kFunctions.size()> ole_;
  bool started_ = false;
};

// What the checks hand on to each other. The order is that of their making, so that the objects go
// before their library.
struct DirectXParts {
  LoadedLibrary direct_draw_library;
  DirectDrawCreateFunction direct_draw_create = nullptr;
  ComObject<IDirectDraw> direct_draw;
  ComObject<IDirectDrawSurface> surface;
  LoadedLibrary direct_input_library;
};

// The steps between the checks: they pass always, and give back what no later check needs.

bool ReleaseDirectInput(DirectXParts& parts) {
  parts.direct_input_library.Release();
  return true;
}

bool ReleaseDirectDraw(DirectXParts& parts) {
  parts.surface.Release();
  parts.direct_draw.Release();
  return true;
}

// The checks.

bool LoadDirectDraw(DirectXParts& parts) {
  return parts.direct_draw_library.Load("DDRAW.DLL");
}

bool FindDirectDrawCreate(DirectXParts& parts) {
  parts.direct_draw_create =
      parts.direct_draw_library.Find<DirectDrawCreateFunction>("DirectDrawCreate");
  return parts.direct_draw_create != nullptr;
}

// `result` becomes what the system answered.
bool CreateForPrimaryDisplay(DirectXParts& parts, HRESULT& result) {
  IDirectDraw* made = nullptr;
  result = parts.direct_draw_create(nullptr, &made, nullptr);
  return parts.direct_draw.Take(result, made);
}

bool CreateDirectDraw(DirectXParts& parts) {
  HRESULT result = 0;
  return CreateForPrimaryDisplay(parts, result);
}

bool HasDirectDraw2(DirectXParts& parts) {
  return parts.direct_draw.Answers(IID_IDirectDraw2);
}

bool LoadDirectInput(DirectXParts& parts) {
  return parts.direct_input_library.Load("DINPUT.DLL");
}

bool HasDirectInputCreate(DirectXParts& parts) {
  return parts.direct_input_library.Find<FARPROC>("DirectInputCreateA") != nullptr;
}

bool SetNormalLevel(DirectXParts& parts) {
  return SUCCEEDED(parts.direct_draw->SetCooperativeLevel(nullptr, DDSCL_NORMAL));
}

bool CreatePrimarySurface(DirectXParts& parts) {
  static_assert(sizeof(DDSURFACEDESC) == 108);
  DDSURFACEDESC description = {};
  description.dwSize = sizeof description;
  description.dwFlags = DDSD_CAPS;
  description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE;
  IDirectDrawSurface* made = nullptr;
  const HRESULT result = parts.direct_draw->CreateSurface(&description, &made, nullptr);
  return parts.surface.Take(result, made);
}

bool HasSurface3(DirectXParts& parts) {
  return parts.surface.Answers(IID_IDirectDrawSurface3);
}

bool HasSurface4(DirectXParts& parts) {
  return parts.surface.Answers(IID_IDirectDrawSurface4);
}

bool HasDirectMusic(DirectXParts&) {
  const ComSession com;
  ComObject<IUnknown> direct_music;
  return com.CreateInProcess(direct_music, CLSID_DirectMusic, IID_IDirectMusic);
}

bool HasDirectDraw7(DirectXParts& parts) {
  const auto create =
      parts.direct_draw_library.Find<DirectDrawCreateExFunction>("DirectDrawCreateEx");
  if (create == nullptr) return false;
  void* made = nullptr;
  const HRESULT result = create(nullptr, &made, IID_IDirectDraw7, nullptr);
  ComObject<IUnknown> direct_draw_7;
  return direct_draw_7.Take(result, static_cast<IUnknown*>(made));
}

bool HasDirect3D8(DirectXParts&) {
  LoadedLibrary direct_3d;
  return direct_3d.Load("D3D8.DLL");
}

struct LadderRow {
  bool (*passes)(DirectXParts& parts);
  std::uint32_t version_when_failing = 0;
  const char* debug_text = nullptr;  // null: none
};

constexpr LadderRow kLadder[] = {
    {LoadDirectDraw, 0, nullptr},
    {FindDirectDrawCreate, 0, "Couldn't LoadLibrary DDraw\r\n"},
    {CreateDirectDraw, 0, "Couldn't create DDraw\r\n"},
    {HasDirectDraw2, 0x100, "Couldn't QI DDraw2\r\n"},
    {LoadDirectInput, 0x200, "Couldn't LoadLibrary DInput\r\n"},
    {HasDirectInputCreate, 0x200, "Couldn't GetProcAddress DInputCreate\r\n"},
    {ReleaseDirectInput},
    {SetNormalLevel, 0x301, "Couldn't Set coop level\r\n"},
    {CreatePrimarySurface, 0x301, "Couldn't CreateSurface\r\n"},
    {HasSurface3, 0x300, nullptr},
    {HasSurface4, 0x500, nullptr},
    {ReleaseDirectDraw},
    {HasDirectMusic, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
    {HasDirectDraw7, 0x601, nullptr},
    {HasDirect3D8, 0x700, nullptr},
};
constexpr std::uint32_t kVersionOfWholeLadder = 0x800;
constexpr std::uint32_t kFirstWith3D = 0x500;

constexpr NumberText kVersionTexts[] = {
    {0, "No DirectX installed"},
    {0x100, "1"},
    {0x200, "2"},
    {0x300, "3"},
    {0x301, "3 (DDraw isn't properly installed!)"},
    {0x500, "5"},
    {0x600, "6"},
    {0x601, "6.1"},
    {0x700, "7"},
    {0x800, "8 or better"},
};

}  // namespace

std::uint32_t DetectDirectXVersion() {
  DirectXParts parts;
  for (const LadderRow& row : kLadder) {
    if (row.passes(parts)) continue;
    if (row.debug_text != nullptr) OutputDebugStringA(row.debug_text);
    return row.version_when_failing;
  }
  return kVersionOfWholeLadder;
}

const char* DirectXVersionText(std::uint32_t version) {
  return TextOfNumber(kVersionTexts, version, "Unknown version");
}

std::uint32_t FormatDirectXVersion(std::span<char> text) {
  const std::uint32_t version = DetectDirectXVersion();
  const char* const words = DirectXVersionText(version);
  const OwnedText stated =
      ReadRegistryValue(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\DirectX", "Version").AsText();
  if (stated.present()) {
    // Cut to what leaves room for the end of the line.
    wsprintfA(text.data(), "%s (%.900s)\r\n", words, stated.c_str());
  } else {
    wsprintfA(text.data(), "%s\r\n", words);
  }
  return version;
}

bool Has3DAcceleration(bool& accelerated) {
  accelerated = false;
  if (DetectDirectXVersion() < kFirstWith3D) return false;
  DirectXParts parts;
  if (!LoadDirectDraw(parts) || !FindDirectDrawCreate(parts)) return false;
  HRESULT result = 0;
  if (!CreateForPrimaryDisplay(parts, result) || result != 0) return false;
  static_assert(sizeof(DDCAPS) == 380);
  DDCAPS capabilities = {};
  capabilities.dwSize = sizeof capabilities;
  if (parts.direct_draw->GetCaps(&capabilities, nullptr) != 0) return false;
  accelerated = (capabilities.dwCaps & DDCAPS_3D) != 0;
  return true;
}

bool WriteDirectXVersion(ItemRun& run) {
  run.report.BeginItem("DirectX version");
  FormatDirectXVersion(run.work);
  run.report.WriteText(run.work.data());
  return true;
}

bool Format3DAcceleration(ProbeContext&, std::span<char> text) {
  bool accelerated = false;
  if (!Has3DAcceleration(accelerated)) return false;
  CopyText(text.data(), text.size(), YesOrNo(accelerated));
  return true;
}

}  // namespace hostscope
