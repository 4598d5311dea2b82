#include "tests/windows/interception.h"

#include <tlhelp32.h>

#include <cstring>
#include <stdexcept>

#include "tests/windows/surroundings.h"

namespace drive {
namespace {

constexpr DWORD kImageBase = 0x400000;
constexpr std::uint16_t kJumpToItself = 0xFEEB;
constexpr DWORD kCodeSize = 256;

// 80386 instructions, one after the other.
class Code {
 public:
  Code& Bytes(std::initializer_list<int> bytes) {
    for (const int byte : bytes)
      code_.push_back(static_cast<char>(byte));
    return *this;
  }
  Code& Number(DWORD number) {
    code_.append(reinterpret_cast<const char*>(&number), sizeof(number));
    return *this;
  }
  Code& Push(DWORD number) { return Bytes({0x68}).Number(number); }
  Code& Call(DWORD address) { return Bytes({0xB8}).Number(address).Bytes({0xFF, 0xD0}); }
  Code& JumpTo(DWORD address) { return Bytes({0xB8}).Number(address).Bytes({0xFF, 0xE0}); }

  DWORD PlaceIn(const LoadedProcess& process) const {
    const DWORD address = process.Allocate(kCodeSize);
    process.Write(address, code_.data(), code_.size());
    return address;
  }

 private:
  std::string code_;
};

const void* In(DWORD address) {
  return reinterpret_cast<const void*>(address);
}

template <typename Record>
Record ReadRecord(HANDLE process, DWORD address) {
  Record record;
  SIZE_T read = 0;
  if (!ReadProcessMemory(process, In(address), &record, sizeof(record), &read)) {
    throw std::runtime_error("cannot read the memory of the program");
  }
  return record;
}

IMAGE_NT_HEADERS32 Headers(HANDLE process) {
  const auto start = ReadRecord<IMAGE_DOS_HEADER>(process, kImageBase);
  return ReadRecord<IMAGE_NT_HEADERS32>(process, kImageBase + start.e_lfanew);
}

DWORD ModuleBase(DWORD process, const char* name) {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process);
  MODULEENTRY32 module = {};
  module.dwSize = sizeof(module);
  DWORD base = 0;
  for (BOOL more = Module32First(snapshot, &module); more && !base;
       more = Module32Next(snapshot, &module)) {
    if (lstrcmpiA(module.szModule, name) == 0) base = reinterpret_cast<DWORD>(module.modBaseAddr);
  }
  CloseHandle(snapshot);
  if (!base) throw std::runtime_error(std::string("the program has not loaded ") + name);
  return base;
}

}  // namespace

// The loader does its work in the started thread itself, so that has to run, but no further than to
// the program's first instruction: it finds one there that jumps to itself.
LoadedProcess::LoadedProcess(HANDLE process, HANDLE main_thread)
    : process_(process), main_thread_(main_thread) {
  const DWORD entry = EntryPoint();
  first_instructions_ = ReadRecord<std::uint16_t>(process_, entry);
  Write(entry, &kJumpToItself, sizeof(kJumpToItself));
  ResumeThread(main_thread_);
  const bool reached = WaitUntil([&] {
    CONTEXT context = {};
    context.ContextFlags = CONTEXT_CONTROL;
    return GetThreadContext(main_thread_, &context) && context.Eip == entry;
  });
  if (!reached) throw std::runtime_error("the program does not come to its first instruction");
  SuspendThread(main_thread_);
  image_.resize(Headers(process_).OptionalHeader.SizeOfImage);
  SIZE_T read = 0;
  ReadProcessMemory(process_, In(kImageBase), image_.data(), image_.size(), &read);
  if (read != image_.size()) throw std::runtime_error("cannot read the image of the program");
}

void LoadedProcess::Run() {
  Write(EntryPoint(), &first_instructions_, sizeof(first_instructions_));
  ResumeThread(main_thread_);
}

DWORD LoadedProcess::EntryPoint() const {
  return kImageBase + Headers(process_).OptionalHeader.AddressOfEntryPoint;
}

DWORD LoadedProcess::ImportSlot(const std::string& function) const {
  const DWORD directory =
      Headers(process_).OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  for (const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(directory); library->Name; ++library) {
    const auto* entries = At<DWORD>(library->OriginalFirstThunk);
    for (DWORD n = 0; entries[n]; ++n) {
      if (entries[n] & IMAGE_ORDINAL_FLAG32) continue;
      if (At<IMAGE_IMPORT_BY_NAME>(entries[n])->Name != function) continue;
      return kImageBase + library->FirstThunk + n * sizeof(DWORD);
    }
  }
  throw std::runtime_error("the program does not import " + function);
}

DWORD LoadedProcess::KernelFunction(const char* function) const {
  const HMODULE here = GetModuleHandleA("kernel32.dll");
  const DWORD offset =
      reinterpret_cast<DWORD>(GetProcAddress(here, function)) - reinterpret_cast<DWORD>(here);
  return ModuleBase(GetProcessId(process_), "kernel32.dll") + offset;
}

DWORD LoadedProcess::Allocate(DWORD size) const {
  void* memory =
      VirtualAllocEx(process_, nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_EXECUTE_READWRITE);
  if (!memory) throw std::runtime_error("no memory in the program");
  return reinterpret_cast<DWORD>(memory);
}

DWORD LoadedProcess::Read(DWORD address) const {
  return ReadRecord<DWORD>(process_, address);
}

void LoadedProcess::Write(DWORD address, const void* bytes, size_t size) const {
  void* place = const_cast<void*>(In(address));
  DWORD protection = 0;
  VirtualProtectEx(process_, place, size, PAGE_EXECUTE_READWRITE, &protection);
  SIZE_T written = 0;
  if (!WriteProcessMemory(process_, place, bytes, size, &written)) {
    throw std::runtime_error("cannot write to the memory of the program");
  }
  VirtualProtectEx(process_, place, size, protection, &protection);
  FlushInstructionCache(process_, place, size);
}

DWORD LoadedProcess::GiveHandle(HANDLE handle) const {
  HANDLE given = nullptr;
  if (!DuplicateHandle(GetCurrentProcess(), handle, process_, &given, 0, FALSE,
                       DUPLICATE_SAME_ACCESS)) {
    throw std::runtime_error("cannot give the program a handle");
  }
  return reinterpret_cast<DWORD>(given);
}

HeldCall::HeldCall(std::string function)
    : function_(std::move(function)),
      reached_(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
      go_(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}

HeldCall::~HeldCall() {
  CloseHandle(reached_);
  CloseHandle(go_);
  if (process_) CloseHandle(process_);
}

void HeldCall::Install(const LoadedProcess& process) {
  DuplicateHandle(GetCurrentProcess(), process.process(), GetCurrentProcess(), &process_, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  slot_ = process.ImportSlot(function_);
  original_ = process.Read(slot_);
  const DWORD code = Code()
                         .Push(process.GiveHandle(reached_))
                         .Call(process.KernelFunction("SetEvent"))
                         .Push(INFINITE)
                         .Push(process.GiveHandle(go_))
                         .Call(process.KernelFunction("WaitForSingleObject"))
                         .JumpTo(original_)
                         .PlaceIn(process);
  process.Write(slot_, code);
}

bool HeldCall::WaitUntilReached() const {
  return WaitForSingleObject(reached_, kPatienceMilliseconds) == WAIT_OBJECT_0;
}

void HeldCall::LetAllGo() const {
  SIZE_T written = 0;
  WriteProcessMemory(process_, reinterpret_cast<void*>(slot_), &original_, sizeof(original_),
                     &written);
  SetEvent(go_);
}

}  // namespace drive
