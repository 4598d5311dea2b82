#include "app/report_location.h"

#include "platform/win32.h"
#include "util/paths.h"

namespace hostscope {
namespace {

// An item list of the shell, given back to the shell's own allocator.
class ShellItemList {
 public:
  explicit ShellItemList(int folder) {
    if (FAILED(SHGetSpecialFolderLocation(nullptr, folder, &list_))) list_ = nullptr;
  }
  ~ShellItemList() {
    LPMALLOC allocator = nullptr;
    if (list_ == nullptr || FAILED(SHGetMalloc(&allocator)) || allocator == nullptr) return;
    allocator->Free(list_);
    allocator->Release();
  }
  ShellItemList(const ShellItemList&) = delete;
  ShellItemList& operator=(const ShellItemList&) = delete;

  bool present() const { return list_ != nullptr; }
  LPITEMIDLIST get() const { return list_; }

 private:
  LPITEMIDLIST list_ = nullptr;
};

OwnedText ShellFolder(int folder) {
  char path[MAX_PATH] = {};
  const ShellItemList list(folder);
  if (!list.present() || !SHGetPathFromIDListA(list.get(), path)) path[0] = '\0';
  return DuplicateText(path);
}

OwnedText ReportFolder(OutputFolder choice, const RunState& state) {
  switch (choice) {
    case OutputFolder::kDesktop:
      return ShellFolder(CSIDL_DESKTOPDIRECTORY);
    case OutputFolder::kDocuments:
      return ShellFolder(CSIDL_PERSONAL);
    case OutputFolder::kArgument:
      if (state.out_argument.present()) return DuplicateText(state.out_argument.c_str());
      break;
  }
  return DuplicateText(state.program_folder.c_str());
}

}  // namespace

void LocateReport(RunState& state, const ProfileSettings& settings) {
  state.report_folder = ReportFolder(static_cast<OutputFolder>(settings.output_folder), state);
  state.report_path = JoinPath(state.report_folder.c_str(), settings.report_file_name);
}

}  // namespace hostscope
