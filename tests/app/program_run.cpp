#include "tests/app/program_run.h"

#include <chrono>

#include "platform/host/process.h"
#include "platform/program.h"
#include "platform/resources.h"
#include "platform/win32.h"
#include "tests/support/report_run.h"

namespace hostscope::test {

ProgramRun::ProgramRun() : use_(machine_) {
  DescribeWindows2000(machine_);
  machine_.module_path = folder_.PathOf("hscope.exe");
}

ProgramRun::~ProgramRun() {
  machine_.desktop.GiveUp();
  if (program_.joinable()) program_.join();
}

void ProgramRun::WriteProfile(std::string_view rest, std::string_view name) {
  folder_.Write(name, "[GENERAL]\r\nSign=Hostscope INI file\r\n" + std::string(rest));
}

void ProgramRun::HoldWorker() {
  held_ = true;
  machine_.faults.AtCall("GetComputerNameA", [this] {
    at_hold_ = true;
    while (held_ && !host::ProcessHasEnded())
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    host::EndThreadIfProcessEnded();
  });
}

void ProgramRun::Start(std::string_view arguments) {
  machine_.command_line = "\"C:\\Program Files\\hscope.exe\"" + std::string(arguments);
  program_ = std::thread([this] {
    exit_code_ = host::RunProcess(machine_, [] { RunProgram(); });
    ended_ = true;
    machine_.desktop.Wake();
  });
}

HWND ProgramRun::WaitForDialog() {
  const auto find = [this] {
    for (const HWND window : machine_.desktop.TopWindows()) {
      for (const HWND child : machine_.desktop.Children(window)) {
        if (GetDlgCtrlID(child) == kProgressListId) dialog_ = window;
      }
    }
    return dialog_ != nullptr;
  };
  const auto found_or_ended = [&] { return find() || ended_; };
  if (!machine_.desktop.WaitUntil(found_or_ended) || dialog_ == nullptr) return nullptr;
  return machine_.desktop.WaitForRest(dialog_) ? dialog_ : nullptr;
}

bool ProgramRun::WaitForFinish() {
  const auto finished = [this] {
    const std::vector<std::string> lines = Lines();
    return !lines.empty() && lines.back() == "Press any key..." &&
           machine_.desktop.SendingThreads() == 0;
  };
  return WaitForDialog() != nullptr && machine_.desktop.WaitUntil(finished) &&
         machine_.desktop.WaitForRest(dialog_);
}

bool ProgramRun::WaitForHold() {
  if (WaitForDialog() == nullptr) return false;
  const auto limit = std::chrono::steady_clock::now() + host::Desktop::kLimit;
  while (!at_hold_ && std::chrono::steady_clock::now() < limit)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return at_hold_ && machine_.desktop.WaitForRest(dialog_);
}

std::optional<int> ProgramRun::WaitForExit() {
  const auto limit = std::chrono::steady_clock::now() + host::Desktop::kLimit;
  while (!ended_ && std::chrono::steady_clock::now() < limit)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (!ended_) return std::nullopt;
  return exit_code_;
}

HWND ProgramRun::Item(int id) const {
  return GetDlgItem(dialog_, id);
}

HWND ProgramRun::list() const {
  return Item(kProgressListId);
}

bool ProgramRun::ClickMiddle(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  return machine_.desktop.Click(window, client.right / 2, client.bottom / 2);
}

}  // namespace hostscope::test
