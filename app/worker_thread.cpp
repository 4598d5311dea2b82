#include "app/worker_thread.h"

#include "app/start_notice.h"
#include "report/progress_lines.h"
#include "report/report_worker.h"

namespace hostscope {

void WorkerThread::Start(HWND progress_list) {
  progress_list_ = progress_list;
  DWORD id = 0;  // the older family insists on a place for it
  state_.worker_thread = CreateThread(nullptr, 0, Routine, this, 0, &id);
}

bool WorkerThread::running() const {
  return state_.worker_thread != nullptr &&
         WaitForSingleObject(state_.worker_thread, 0) == WAIT_TIMEOUT;
}

void WorkerThread::Close() {
  if (state_.worker_thread != nullptr) CloseHandle(state_.worker_thread);
  state_.worker_thread = nullptr;
}

DWORD WINAPI WorkerThread::Routine(LPVOID worker) {
  const auto* const self = static_cast<WorkerThread*>(worker);
  ProgressLines progress(self->progress_list_);
  ReportWorker(self->state_, self->settings_, progress);
  progress.AddProgressLine("");
  progress.AddProgressLine(kPressAnyKey);
  return 0;
}

}  // namespace hostscope
