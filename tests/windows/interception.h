// Steps between the program and one function that it imports, so that a test can hold a run still
// in the middle of an item, or let a call fail that Wine never fails. The program's file stays as
// it is: a few instructions are placed in the memory of the started process before its own first
// one.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace drive {

// A process of the program that has loaded its libraries and executed nothing of its own yet.
class LoadedProcess {
 public:
  // Both handles stay the caller's. The thread was created suspended.
  LoadedProcess(HANDLE process, HANDLE main_thread);
  void Run();

  // Where the process keeps the address of a function that the program imports.
  DWORD ImportSlot(const std::string& function) const;
  // The address of a function of the system's kernel library.
  DWORD KernelFunction(const char* function) const;
  DWORD Allocate(DWORD size) const;
  DWORD Read(DWORD address) const;
  void Write(DWORD address, const void* bytes, size_t size) const;
  void Write(DWORD address, DWORD value) const { Write(address, &value, sizeof(value)); }
  DWORD GiveHandle(HANDLE handle) const;
  HANDLE process() const { return process_; }

 private:
  DWORD EntryPoint() const;
  // A place in the program's image, by its distance from the image's start.
  template <typename Record>
  const Record* At(DWORD distance) const {
    return reinterpret_cast<const Record*>(image_.data() + distance);
  }

  HANDLE process_;
  HANDLE main_thread_;
  std::uint16_t first_instructions_ = 0;
  std::vector<char> image_;  // a copy
};

class Interception {
 public:
  virtual ~Interception() = default;
  virtual void Install(const LoadedProcess& process) = 0;
};

// Every call of the function waits until the test lets it go. The thread that called waits, and no
// other.
class HeldCall : public Interception {
 public:
  explicit HeldCall(std::string function);
  ~HeldCall() override;
  HeldCall(const HeldCall&) = delete;
  HeldCall& operator=(const HeldCall&) = delete;
  void Install(const LoadedProcess& process) override;

  // True when a call has come and waits.
  bool WaitUntilReached() const;
  // This call and all that follow.
  void LetAllGo() const;

 private:
  std::string function_;
  HANDLE reached_;
  HANDLE go_;
  HANDLE process_ = nullptr;
  DWORD slot_ = 0;
  DWORD original_ = 0;
};

}  // namespace drive
