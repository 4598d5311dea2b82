#pragma once

#include "platform/win32.h"
#include "report/page_file_record.h"
#include "util/library.h"
#include "util/record_array.h"

namespace hostscope {

// Rows of the setup library's functions within its binding.
enum class SetupFunction : std::size_t {
  kEnumDeviceInfo,
  kDestroyDeviceInfoList,
  kGetClassDevs,
  kClassGuidsFromName,
  kGetDeviceInstanceId,
  kCount,
};

// Rows of the sockets library's functions within its binding.
enum class SocketsFunction : std::size_t {
  kStartup,
  kGetHostName,
  kGetHostByName,
  kCleanup,
  kAddressText,
  kCount,
};

struct WindowsSocketsState {
  template <typename Function>
  Function Get(SocketsFunction row) const {
    return library.Get<Function>(static_cast<std::size_t>(row));
  }

  BoundLibrary<static_cast<std::size_t>(SocketsFunction::kCount)> library;  // while it is loaded
  bool started = false;
  char version[16] = {};
  char description[257] = {};
  char status[129] = {};
};

// The functions that list the processes, bound for the time of one listing: NT has one of its own,
// the other systems have tool help.
struct ProcessListingState {
  BoundLibrary<1> native;
  BoundLibrary<5> tool_help;
};

// The facts and bindings that several probes of one run share. Made after the report file has been
// created, gone after it has been closed.
class ProbeContext {
 public:
  ProbeContext();
  ~ProbeContext() { page_files.Destroy(); }
  ProbeContext(const ProbeContext&) = delete;
  ProbeContext& operator=(const ProbeContext&) = delete;

  // The NT family; otherwise Windows 95/98/Me, also when the system does not say.
  bool is_nt() const { return is_nt_; }
  // Whether the setup library and all its functions are there.
  bool has_setup_api() const { return setup_.bound(); }
  template <typename Function>
  Function Setup(SetupFunction row) const {
    return setup_.Get<Function>(static_cast<std::size_t>(row));
  }

  WindowsSocketsState sockets;
  ProcessListingState process_listing;
  RecordArray page_files;  // of PageFileRecord

 private:
  bool is_nt_;
  BoundLibrary<static_cast<std::size_t>(SetupFunction::kCount)> setup_;
};

}  // namespace hostscope
