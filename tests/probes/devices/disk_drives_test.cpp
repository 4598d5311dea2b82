// The physical disks: by the driver of NT, by the ports of the controllers, by the registry.

#include "probes/devices/disk_drives.h"

#include <gtest/gtest.h>

#include "probes/devices/ata_identify.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using test::ReportRun;

constexpr host::WindowsVersion kWindows98 = {
    .major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};

host::IdeDrive Disk(const char* model) {
  return {.configuration = 0x40,
          .cylinders = 1,
          .heads = 0xFFFF,
          .sectors_per_track = 63,
          .model = model,
          .serial_number = "  S 1",
          .revision = "R2"};
}

host::IdeDrive PacketDrive(const char* model) {
  return {.takes_packets = true, .configuration = 0x8580, .model = model};
}

// What the item writes below its banner, and its status word behind that.
std::string ItemOf(ReportRun& run) {
  run.Run("[DISK DRIVE]\r\nDiskDrives=1\r\n");
  EXPECT_EQ(run.Progress().back().substr(0, 25), "Disk drives...           ");
  for (const char* const kind : {"device", "key", "device set"})
    EXPECT_FALSE(run.machine().handles.OpenObjects().contains(kind)) << kind;
  return run.LastSection() + run.Progress().back().substr(25);
}

// The models of the identified drives with the places that they are told in.
std::string Identified(host::Machine& machine) {
  const host::UseMachine use(machine);
  const ProbeContext context;
  RecordArray drives;
  drives.Create(sizeof(DiskDriveRecord));
  std::string text;
  const bool found = IdentifyIdeDrives(context, drives);
  EXPECT_EQ(found, drives.count() != 0);
  for (int i = 0; i < drives.count(); ++i) {
    const auto& drive = *drives.GetAs<DiskDriveRecord>(i);
    text += std::string(drive.model) + "@" + drive.controller[0] + drive.drive[0] + " ";
  }
  return text;
}

TEST(DiskDrives, ControllersThatDoNotAnswer) {
  constexpr unsigned kLooks = 99999;
  constexpr unsigned kOfADisk = 1 + 1 + 256;
  const struct {
    const char* what;
    void (*describe)(host::Disks&);
    const char* found;
    unsigned most_reads;
  } rows[] = {
      {"no controller at all", [](host::Disks&) {}, "", 8 * 2},
      {"ports out of reach",
       [](host::Disks& disks) {
         disks.channels[0].drives[0] = Disk("A");
         disks.ports_reachable = false;
       },
       "", 8},
      {"never ready", [](host::Disks& disks) { disks.channels[2].busy = true; }, "",
       2 * kLooks + 3 * 4},
      {"no slave", [](host::Disks& disks) { disks.channels[0].drives[0] = Disk("A"); }, "A@pm ",
       kOfADisk + 1 + kLooks + 3 * 4},
      {"a CD drive as the master",
       [](host::Disks& disks) {
         disks.channels[1].drives = {PacketDrive("CD"), Disk("B")};
       },
       "B@ss ", 2 + kOfADisk + 3 * 4},
      {"a CD drive as the slave",
       [](host::Disks& disks) {
         disks.channels[2].drives = {Disk("A"), PacketDrive("CD")};
       },
       "A@tm ", kOfADisk + 2 + 3 * 4},
  };
  for (const auto& row : rows) {
    host::Machine machine;
    machine.version = kWindows98;
    row.describe(machine.disks);
    EXPECT_EQ(Identified(machine), row.found) << row.what;
    EXPECT_LE(machine.faults.CallCount("ReadPortByte") + machine.faults.CallCount("ReadPortWord"),
              row.most_reads)
        << row.what;
  }
}

// The layer's driver refuses a request that is not as the interface asks for it.
TEST(DiskDrives, TheDriverOfNtIsAskedForEachDrive) {
  const auto describe = [](host::Machine& machine) {
    test::DescribeWindows2000(machine);
    machine.disks.channels[0].drives = {Disk("A"), PacketDrive("ZIP")};
    machine.disks.channels[3].drives[1] = Disk("H");
    machine.disks.physical_drives = {{0, 0}, {1, 1}, {2, std::nullopt}, {7, 7}, {8, 0}};
  };
  const struct {
    const char* what;
    const char* function;
    unsigned call;
    const char* found;
  } rows[] = {
      {"all answer", nullptr, 0, "A@pm ZIP@ps H@qs "},
      {"the first does not open", "CreateFileA", 1, "ZIP@ps H@qs "},
      {"no block", "DeviceIoControl", 4, "A@pm H@qs "},
  };
  for (const auto& row : rows) {
    host::Machine machine;
    describe(machine);
    if (row.function != nullptr) machine.faults.FailNth(row.function, row.call, ERROR_NOT_READY);
    EXPECT_EQ(Identified(machine), row.found) << row.what;
    EXPECT_FALSE(machine.handles.OpenObjects().contains("device")) << row.what;
    EXPECT_EQ(machine.faults.CallCount("CreateFileA"), kIdeDrives) << row.what;
  }
}

// Each way counts only when those before it have found nothing.
TEST(DiskDrives, WhatNoDriveTellsComesFromTheRegistry) {
  constexpr char kUnit[] =
      "HKLM\\HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3\\Scsi Bus 3\\Target Id 3\\Logical Unit Id 3";
  constexpr char kDevice[] = "HKLM\\SYSTEM\\CurrentControlSet\\Enum\\A\\B\\1";
  constexpr char kClass[] = "{4D36E967-E325-11CE-BFC1-08002BE10318}";
  const auto model = [](const std::string& name) {
    return "HDD (total 1)              Model                :  " + name + "\r\n\r\nOk";
  };
  const std::string failed = "HDD                        \r\nFailed";
  ReportRun run;
  host::Registry& registry = run.machine().registry;
  EXPECT_EQ(ItemOf(run), "HDD (total 0)\r\nOk");
  registry.SetText(std::string("HKLM\\SYSTEM\\CurrentControlSet\\Control\\Class\\") + kClass,
                   "Class", "diskdrive");
  registry.SetText(kDevice, "ClassGUID", kClass);
  registry.SetText(kDevice, "DeviceDesc", "Scanned");
  registry.MakeKey(std::string(kDevice) + "\\Control");
  EXPECT_EQ(ItemOf(run), model("Scanned"));
  registry.SetText(kUnit, "Type", "diskperipheral");
  EXPECT_EQ(ItemOf(run), model("Scanned")) << "no identifier";
  registry.SetText(kUnit, "Identifier", std::string(300, 'x'));
  EXPECT_EQ(ItemOf(run), model(std::string(255, 'x')));
  // Only NT has such a map; here nothing can be scanned either.
  run.machine().version = kWindows98;
  run.machine().libraries.Remove("SETUPAPI.DLL");
  EXPECT_EQ(ItemOf(run), failed);
}

}  // namespace
}  // namespace hostscope
