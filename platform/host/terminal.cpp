#include "platform/host/terminal.h"

#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the system's, which has more
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <mutex>
#include <thread>

#include "platform/host/code_page.h"
#include "platform/host/user32.h"

namespace host {
namespace {

constexpr std::string_view kLastLine = "Press any key...";  // the program waits for a key then
constexpr char kEscape = '\x1b';

struct NamedButton {
  int id;
  const char* name;  // no two begin with the same letter
};
constexpr NamedButton kButtonNames[] = {
    {IDOK, "OK"},         {IDCANCEL, "Cancel"}, {IDABORT, "Abort"}, {IDRETRY, "Retry"},
    {IDIGNORE, "Ignore"}, {IDYES, "Yes"},       {IDNO, "No"},
};

std::string BoxText(const ShownMessageBox& box) {
  std::string text = "[" + TerminalText(box.caption) + "]\n" + TerminalText(box.text, true);
  if (text.back() != '\n') text += '\n';
  return text;
}

// "[Y]es / [N]o (Enter: Yes): "
std::string ButtonText(const ShownMessageBox& box) {
  std::string text;
  for (const int button : box.Buttons()) {
    const std::string name = ButtonName(button);
    text += (text.empty() ? "[" : " / [") + name.substr(0, 1) + "]" + name.substr(1);
  }
  return text + " (Enter: " + ButtonName(box.DefaultButton()) + "): ";
}

// What is read from a terminal may be several keys. Those that send more than a byte (arrows and
// the like) are left out; a lone escape byte is the Escape key.
std::string PlainKeys(std::string_view bytes) {
  std::string keys;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const bool sequence = bytes[at] == kEscape && at + 1 < bytes.size() &&
                          (bytes[at + 1] == '[' || bytes[at + 1] == 'O');
    if (!sequence) {
      keys += bytes[at];
      continue;
    }
    ++at;
    while (++at < bytes.size() && (bytes[at] < '@' || bytes[at] > '~')) {
    }
  }
  return keys;
}

// The button that the key stands for; 0: none.
int ButtonFor(const ShownMessageBox& box, char key) {
  if (key == '\r' || key == '\n') return box.DefaultButton();
  if (key == kEscape) return box.EscapeButton();
  for (const int button : box.Buttons()) {
    if (UpperCase(key) == ButtonName(button)[0]) return button;
  }
  return 0;
}

void WriteAll(int file, const std::string& text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t written = write(file, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

int WidthOf(int output) {
  winsize size = {};
  return ioctl(output, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

// Single keys from a terminal, without echo, while the object lives. What was typed before goes.
class SingleKeys {
 public:
  explicit SingleKeys(int input) : input_(input) {
    is_terminal_ = tcgetattr(input, &before_) == 0;
    if (!is_terminal_) return;
    termios single = before_;
    single.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    single.c_cc[VMIN] = 1;
    single.c_cc[VTIME] = 0;
    tcsetattr(input, TCSAFLUSH, &single);
  }
  ~SingleKeys() {
    if (is_terminal_) tcsetattr(input_, TCSANOW, &before_);
  }
  SingleKeys(const SingleKeys&) = delete;
  SingleKeys& operator=(const SingleKeys&) = delete;

 private:
  int input_;
  bool is_terminal_ = false;
  termios before_ = {};
};

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return number_; }

 private:
  int number_;
};

// The signals that end a program, as something to wait for: a terminal must be put right first.
sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    sigaddset(&signals, signal);
  return signals;
}

}  // namespace

std::string ButtonName(int button) {
  for (const NamedButton& row : kButtonNames) {
    if (row.id == button) return row.name;
  }
  return {};
}

// One thread waits for the desktop, the keyboard and signals, asks and answers; the list's lines
// come on the desktop's own thread.
class Terminal::Session {
 public:
  Session(Desktop& desktop, const Setting& setting)
      : desktop_(desktop),
        setting_(setting),
        asks_(setting.asks),
        output_([this](const std::string& text) { WriteAll(setting_.output, text); },
                {setting.in_place, WidthOf(setting.output)}),
        wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
        signals_(TakeSignals()) {
    desktop_.SetPatience(std::nullopt);
    desktop_.ListenToLists([this](const ListChange& change) { Follow(change); });
    desktop_.ListenToChanges([this] { Wake(); });
    thread_ = std::thread([this] { Run(); });
  }

  ~Session() {
    desktop_.ListenToChanges(nullptr);
    desktop_.ListenToLists(nullptr);
    stopping_ = true;
    Wake();
    thread_.join();
    output_.Resume();
    output_.Finish();
    if (setting_.asks) pthread_sigmask(SIG_SETMASK, &signals_before_, nullptr);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  int TakeSignals() {
    if (!setting_.asks) return -1;
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, &signals_before_);
    return signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  }

  void Wake() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wake_.get(), &one, sizeof(one));
  }

  void Follow(const ListChange& change) {
    const std::lock_guard lock(mutex_);
    if (change.added) {
      output_.Add(change.text);
    } else {
      output_.RemoveLast();
    }
    waits_for_key_ = change.added && change.text == kLastLine;
  }

  // The worker's last lines come a little before it ends, and until then the program ignores keys.
  bool WaitsForKey() {
    const std::lock_guard lock(mutex_);
    return waits_for_key_ && desktop_.SendingThreads() == 0;
  }

  void Run() {
    while (!stopping_) {
      if (const auto box = desktop_.OpenMessageBox()) {
        AskBox(*box);
      } else if (WaitsForKey()) {
        AskKey();
      } else {
        WaitForNews();
      }
    }
  }

  enum class News { kDesktop, kKeys, kInputEnd };

  // Waits for a change of the desktop, or for keys when they are asked for.
  News WaitForNews(std::string* keys = nullptr) {
    std::array<pollfd, 3> sources = {{{wake_.get(), POLLIN, 0},
                                      {signals_.get(), POLLIN, 0},
                                      {keys != nullptr ? setting_.input : -1, POLLIN, 0}}};
    poll(sources.data(), sources.size(), -1);
    if (sources[0].revents != 0) {
      std::uint64_t count = 0;
      [[maybe_unused]] const ssize_t taken = read(wake_.get(), &count, sizeof(count));
    }
    if (sources[1].revents != 0) TakeSignal();
    if (keys == nullptr || sources[2].revents == 0) return News::kDesktop;
    std::array<char, 64> bytes = {};
    const ssize_t size = read(setting_.input, bytes.data(), bytes.size());
    if (size <= 0) return News::kInputEnd;
    *keys = PlainKeys({bytes.data(), static_cast<std::size_t>(size)});
    return News::kKeys;
  }

  // The first Ctrl+C is the Escape key, which asks the program's own question; the next one, while
  // a question stands, ends the program, and so does every other signal.
  void TakeSignal() {
    signalfd_siginfo signal = {};
    if (read(signals_.get(), &signal, sizeof(signal)) != sizeof(signal)) return;
    const auto number = static_cast<int>(signal.ssi_signo);
    if (number == SIGINT && !desktop_.OpenMessageBox() && desktop_.ActiveWindow() != nullptr) {
      desktop_.KeyPress(VK_ESCAPE);
      return;
    }
    keys_.reset();
    WriteAll(setting_.questions, "\n");
    _exit(128 + number);
  }

  // Says the text below the list's lines and has the keyboard give single keys.
  void BeginQuestion(const std::string& text) {
    const std::lock_guard lock(mutex_);
    output_.Interrupt();
    Say(text);
    if (asks_) keys_.emplace(setting_.input);
  }

  void EndQuestion(const std::string& text) {
    keys_.reset();
    const std::lock_guard lock(mutex_);
    Say(text);
    output_.Resume();
  }

  void Say(const std::string& text) const {
    WriteAll(asks_ ? setting_.questions : setting_.output, text);
  }

  void AskBox(const ShownMessageBox& box) {
    BeginQuestion(BoxText(box) + (asks_ ? ButtonText(box) : ""));
    int answer = 0;
    while (asks_ && answer == 0 && !stopping_ && desktop_.OpenMessageBox()) {
      std::string keys;
      if (WaitForNews(&keys) == News::kInputEnd) asks_ = false;
      for (const char key : keys) {
        if (answer == 0) answer = ButtonFor(box, key);
      }
    }
    std::string said = ButtonName(answer) + "\n";
    if (!asks_) {
      answer = box.Buttons().front();
      said = "Answered \"" + ButtonName(answer) + "\": there is no terminal to ask at.\n";
    }
    EndQuestion(said);
    if (answer != 0) desktop_.AnswerMessageBox(answer);
  }

  void AskKey() {
    {
      const std::lock_guard lock(mutex_);
      output_.Finish();
    }
    BeginQuestion("");
    bool pressed = !asks_;
    while (!pressed && !stopping_ && WaitsForKey() && !desktop_.OpenMessageBox()) {
      // Keys that would only scroll the list do not count.
      std::string keys;
      if (WaitForNews(&keys) == News::kInputEnd) asks_ = false;
      pressed = !asks_ || !keys.empty();
    }
    EndQuestion(asks_ ? "" : "Key pressed: there is no terminal to ask at.\n");
    if (!pressed) return;
    // Not before the dialog is there to take it.
    while (!stopping_ && !desktop_.KeyPress(VK_SPACE))
      WaitForNews();
    const std::lock_guard lock(mutex_);
    waits_for_key_ = false;
  }

  Desktop& desktop_;
  const Setting setting_;
  std::atomic<bool> asks_;
  std::atomic<bool> stopping_ = false;
  std::mutex mutex_;  // of the output
  ProgressOutput output_;
  bool waits_for_key_ = false;
  std::optional<SingleKeys> keys_;
  sigset_t signals_before_ = {};
  Descriptor wake_;
  Descriptor signals_;
  std::thread thread_;
};

Terminal::Setting Terminal::StandardSetting() {
  Setting setting;
  setting.in_place = isatty(STDOUT_FILENO) != 0;
  setting.questions = setting.in_place ? STDOUT_FILENO : STDERR_FILENO;
  setting.asks = isatty(STDIN_FILENO) != 0 && isatty(setting.questions) != 0;
  return setting;
}

Terminal::Terminal(Desktop& desktop, const Setting& setting)
    : session_(std::make_unique<Session>(desktop, setting)) {}

Terminal::~Terminal() = default;

}  // namespace host
