// COM (OLE32), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
inline constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0);

inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;

// Every object begins with these; AddRef and Release cannot fail.
struct IUnknown {
  virtual HRESULT QueryInterface(REFIID interface_id, void** object) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

 protected:
  ~IUnknown() = default;
};

// For the calling thread; S_FALSE when it has done so before, which counts too.
HRESULT WINAPI CoInitialize(LPVOID reserved);
void WINAPI CoUninitialize();
HRESULT WINAPI CoCreateInstance(REFCLSID class_id, IUnknown* outer, DWORD context,
                                REFIID interface_id, LPVOID* object);
