#include "probes/devices/floppy_format.h"

#include "platform/disk_control.h"
#include "util/dos_call.h"
#include "util/handles.h"
#include "util/low_block.h"
#include "util/number_text.h"

namespace hostscope {
namespace {

constexpr char kLargeFormat[] = "5.25\"";
constexpr char kSmallFormat[] = "3.5\"";

constexpr NumberText kMediaTypes[] = {
    {1, kLargeFormat}, {2, kSmallFormat}, {3, kSmallFormat}, {4, kSmallFormat}, {5, kSmallFormat},
    {6, kLargeFormat}, {7, kLargeFormat}, {8, kLargeFormat}, {9, kLargeFormat}, {10, kLargeFormat}};

constexpr NumberText kDeviceTypes[] = {{0, kLargeFormat}, {1, kLargeFormat}, {2, kSmallFormat},
                                       {3, kLargeFormat}, {4, kLargeFormat}, {5, kSmallFormat},
                                       {7, kSmallFormat}, {8, kSmallFormat}};

// A drive that takes media of several types has more to say than there is room for, and says so
// (ERROR_MORE_DATA). The first one, which tells enough, is there.
bool ReadFirstGeometry(const FileHandle& device, DiskGeometry& geometry) {
  DWORD returned = 0;
  return DeviceIoControl(device.get(), kStorageGetMediaTypes, nullptr, 0, &geometry,
                         sizeof geometry, &returned, nullptr) != 0 ||
         GetLastError() == ERROR_MORE_DATA;
}

bool AskStorageDriver(const char* drive, const char*& format) {
  char name[8];
  wsprintfA(name, "\\\\.\\%.2s", drive);
  const FileHandle device = FileHandle::OpenDevice(name, 0);
  if (!device.open()) return false;
  DiskGeometry geometry = {};
  format = ReadFirstGeometry(device, geometry) ? FormatOfMediaType(geometry.media_type) : "";
  return true;
}

std::uint32_t DriveIndex(const char* drive) {
  char letter[] = {drive[0], '\0'};
  CharUpperA(letter);
  return static_cast<std::uint8_t>(letter[0]) - std::uint32_t{'A'};
}

bool AskDos(const char* drive, const char*& format) {
  constexpr std::uint32_t kGetDeviceParameters = 0x4860;
  // More than the service writes.
  LowBlock parameters(256);
  if (!parameters.present()) return false;
  DosRegisters registers = {};
  registers.ebx = DriveIndex(drive) + 1;
  registers.edx = parameters.address();
  registers.ecx = kGetDeviceParameters;
  registers.eax = kDosGenericIoctl;
  registers.flags = kDosCarry;
  if (!CallDos(registers) || (registers.flags & kDosCarry) != 0) return false;
  format = FormatOfDeviceType(static_cast<std::uint8_t>(parameters.data()[1]));
  return true;
}

}  // namespace

bool ReadFloppyFormat(const ProbeContext& context, const char* drive, const char*& format) {
  return context.is_nt() ? AskStorageDriver(drive, format) : AskDos(drive, format);
}

const char* FormatOfMediaType(std::uint32_t media_type) {
  return TextOfNumber(kMediaTypes, media_type, "");
}

const char* FormatOfDeviceType(std::uint8_t device_type) {
  return TextOfNumber(kDeviceTypes, device_type, "");
}

}  // namespace hostscope
