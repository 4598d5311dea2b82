// The dialog as it looks and answers when the run is over or none was started.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"
#include "tests/windows/opened_target.h"

namespace drive {
namespace {

// A finished run of the eight items.
struct FinishedRun {
  explicit FinishedRun(const std::string& profile = ProfileWith("")) {
    folder.Write("test.ini", profile);
    program = std::make_unique<Program>(folder, Start{.arguments = {"test.ini"}});
  }
  bool Wait() const { return program->WaitUntilFinished(); }

  Folder folder;
  std::unique_ptr<Program> program;
};

RECT PlaceOf(HWND control, HWND dialog) {
  RECT place = {};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

std::string Show(const RECT& place) {
  return std::to_string(place.left) + "," + std::to_string(place.top) + " " +
         std::to_string(place.right - place.left) + "x" + std::to_string(place.bottom - place.top);
}

// How many pixels the dialog's font makes of its units, found by the size of the whole dialog.
class DialogUnits {
 public:
  explicit DialogUnits(const RECT& client) {
    while (MulDiv(158, width_, 4) < client.right)
      ++width_;
    while (MulDiv(164, height_, 8) < client.bottom)
      ++height_;
    EXPECT_EQ(MulDiv(158, width_, 4), client.right);
    EXPECT_EQ(MulDiv(164, height_, 8), client.bottom);
  }
  RECT Pixels(int x, int y, int width, int height) const {
    const LONG left = MulDiv(x, width_, 4), top = MulDiv(y, height_, 8);
    return {left, top, left + MulDiv(width, width_, 4), top + MulDiv(height, height_, 8)};
  }

 private:
  int width_ = 1;
  int height_ = 1;
};

TEST(Dialog, IsPutTogetherAsDrawn) {
  FinishedRun run;
  ASSERT_TRUE(run.Wait());
  const HWND dialog = run.program->dialog();
  RECT client = {}, window = {};
  GetClientRect(dialog, &client);
  GetWindowRect(dialog, &window);
  EXPECT_EQ(window.left, (GetSystemMetrics(SM_CXSCREEN) - (window.right - window.left)) / 2);
  EXPECT_EQ(window.top, (GetSystemMetrics(SM_CYSCREEN) - (window.bottom - window.top)) / 2);
  EXPECT_EQ(GetWindowLongA(dialog, GWL_STYLE) & (WS_SYSMENU | WS_MINIMIZEBOX | WS_THICKFRAME),
            WS_SYSMENU | WS_MINIMIZEBOX);

  const DialogUnits units(client);
  const LONG w = client.right, h = client.bottom;
  const struct {
    const char* what;
    RECT place;
  } rows[] = {
      {"list", units.Pixels(4, 36, 150, 111)}, {"check box", units.Pixels(4, 152, 84, 9)},
      {"hyperlink", {130, 40, w - 7, 55}},     {"title", {6, 2, w - 6, 27}},
      {"notice", {6, 27, w - 6, 57}},          {"close button", {w - 72, h - 24, w - 7, h - 5}},
  };
  std::vector<std::string> places;
  for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    places.push_back(Show(PlaceOf(child, dialog)));
  EXPECT_EQ(places.size(), 6u);
  for (const auto& row : rows)
    EXPECT_EQ(std::count(places.begin(), places.end(), Show(row.place)), 1) << row.what;
  char text[100] = {};
  GetWindowTextA(run.program->CheckBox(), text, sizeof(text));
  EXPECT_STREQ(text, "&Send e-mail after exit");
  EXPECT_EQ(run.program->Focus(), run.program->List());
}

// Smoothed pixels are darker greens.
TEST(Dialog, ListIsGreenOnBlack) {
  FinishedRun run;
  ASSERT_TRUE(run.Wait());
  const HDC screen = GetDC(nullptr);
  std::map<COLORREF, int> colours;
  const auto count_colours = [&] {
    colours.clear();
    for (int y = 0; y < 40; ++y) {
      for (int x = 0; x < 100; ++x) {
        POINT point = {x, y};
        ClientToScreen(run.program->List(), &point);
        ++colours[GetPixel(screen, point.x, point.y)];
      }
    }
    return colours.contains(RGB(0, 0xF0, 0)) && colours.contains(0);
  };
  EXPECT_TRUE(WaitUntil(count_colours, 5000));
  ReleaseDC(nullptr, screen);
  EXPECT_TRUE(std::all_of(colours.begin(), colours.end(),
                          [](const auto& one) { return (one.first & RGB(0xFF, 0, 0xFF)) == 0; }));
}

class DialogOnEveryRelease : public EveryRelease {};

TEST_P(DialogOnEveryRelease, FinishedListScrollsByKeysAndClicks) {
  FinishedRun run;
  ASSERT_TRUE(run.Wait());
  Program& program = *run.program;
  const HWND list = program.List();
  // More lines than fit on the screen.
  for (int n = program.Lines().size(); n < 40; ++n)
    Ask(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"one more line"));
  RECT area = {};
  GetClientRect(list, &area);
  const LONG half = area.bottom / 2;
  struct Row {
    const char* what;
    int key;       // 0: a click
    LONG y;        // of the click
    int expected;  // current line afterwards
  };
  const Row rows[] = {
      {"last line", VK_NEXT, 0, 39},
      {"up from it", VK_UP, 0, 38},
      {"first line", VK_PRIOR, 0, 0},
      {"up from the first line", VK_UP, 0, 0},
      {"down", VK_DOWN, 0, 16},
      {"down again", VK_DOWN, 0, 32},
      {"top", 0, 0, 0},
      {"bottom", 0, area.bottom - 1, 39},
      {"end of the upper half", 0, half - 1, 0},
      {"start of the lower half", 0, (area.bottom + 1) / 2, 39},
  };
  // Two clicks near each other would be a double click.
  LONG x = 0;
  for (const Row& row : rows) {
    if (row.key) {
      TypeKey(program.dialog(), row.key);
    } else {
      Click(list, {x += 30, row.y});
    }
    EXPECT_TRUE(WaitUntil([&] { return program.CurrentLine() == row.expected; }))
        << row.what << ": " << program.CurrentLine();
  }
  EXPECT_LE(Ask(list, LB_GETTOPINDEX), 39);
  EXPECT_GT(Ask(list, LB_GETTOPINDEX), 10);
  TypeKey(program.dialog(), VK_F2);
  EXPECT_EQ(program.WaitForExit(), 0u);
}

TEST(Dialog, TabGoesRoundAndEnterDoesNothing) {
  FinishedRun run(ProfileWith("", "Email=1\r\n"));
  ASSERT_TRUE(run.Wait());
  Program& program = *run.program;
  const auto tab_to = [&](HWND next) {
    TypeKey(program.dialog(), VK_TAB);
    return WaitUntil([&] { return program.Focus() == next; });
  };
  TypeKey(program.dialog(), VK_RETURN);
  ASSERT_TRUE(tab_to(program.CheckBox()));
  TypeKey(program.dialog(), VK_RETURN);
  ASSERT_TRUE(tab_to(program.CloseButton()));
  ASSERT_TRUE(tab_to(program.List()));
  ASSERT_TRUE(tab_to(program.CheckBox()));
  TypeKey(program.dialog(), VK_SPACE);
  EXPECT_TRUE(WaitUntil([&] { return !program.IsChecked(); }));
  // A key means nothing to the check box; a click in the list takes the focus back there.
  TypeKey(program.dialog(), 'Q');
  Click(program.List(), {30, 2});
  EXPECT_TRUE(WaitUntil([&] { return program.Focus() == program.List(); }));
  TypeKey(program.dialog(), 'Q');
  EXPECT_EQ(program.WaitForExit(), 0u);
}

TEST_P(DialogOnEveryRelease, CheckBoxFollowsTheProfile) {
  struct Row {
    const char* post_run;
    bool checked;
    bool enabled;
  };
  const Row rows[] = {
      {"Email=1\r\nEmailCheckBox=1", true, true},
      {"Email=1\r\nEmailCheckBox=0", true, false},
      {"Email=0\r\nEmailCheckBox=1", false, false},
      {"Email=0\r\nEmailCheckBox=0", false, false},
      {"Email=1", true, true},
      {"", false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.post_run);
    FinishedRun run(ProfileWith("", row.post_run));
    ASSERT_TRUE(run.Wait());
    const HWND box = run.program->CheckBox();
    EXPECT_EQ(run.program->IsChecked(), row.checked);
    EXPECT_EQ(IsWindowEnabled(box) != 0, row.enabled);
    // One click changes an enabled box and the next changes it back; the list shows when a click
    // that changes nothing is over.
    bool expected = row.checked;
    for (const int click : {1, 2}) {
      SCOPED_TRACE(click);
      expected = expected != row.enabled;
      ClickMiddle(box);
      Click(run.program->List(), {30, 2});
      EXPECT_TRUE(WaitUntil([&] { return run.program->CurrentLine() == 0; }));
      EXPECT_EQ(run.program->IsChecked(), expected);
      TypeKey(run.program->dialog(), VK_NEXT);
      EXPECT_TRUE(WaitUntil([&] { return run.program->CurrentLine() == 9; }));
    }
    TypeKey(run.program->dialog(), 'X');
    EXPECT_EQ(run.program->WaitForExit(), 0u);
  }
}

std::string TextOfTheProgram(const Folder& folder, UINT id) {
  char text[256] = {};
  const HMODULE module =
      LoadLibraryExA(folder.program().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  LoadStringA(module, id, text, sizeof(text));
  FreeLibrary(module);
  return text;
}

// The link lies over the notice, and the notice does not take its clicks.
TEST_P(DialogOnEveryRelease, LinkOpensTheWebAddressMaximised) {
  FinishedRun run;
  ASSERT_TRUE(run.Wait());
  const OpeningProgram browser(run.folder, "http");
  const HWND dialog = run.program->dialog();
  RECT client = {};
  GetClientRect(dialog, &client);
  const POINT on_the_link = {client.right - 30, 47};
  DragPointer(dialog, {client.right - 60, 70}, on_the_link);
  Click(dialog, on_the_link);
  const auto opened = browser.WaitForTarget();
  ASSERT_TRUE(opened);
  std::string address = TextOfTheProgram(run.folder, 1);
  EXPECT_TRUE(address.starts_with("http://")) << address;
  // Wine completes an address without a path.
  EXPECT_TRUE(opened->target == address || opened->target == address + "/") << opened->target;
  EXPECT_EQ(opened->show_command, SW_SHOWMAXIMIZED);
  EXPECT_TRUE(run.program->Runs());
  // The pointer belongs to the link as long as it is on it, and to nobody afterwards.
  ClickMiddle(run.program->CloseButton());
  EXPECT_EQ(run.program->WaitForExit(), 0u);
}

TEST_P(DialogOnEveryRelease, DraggingOffTheCloseButtonReleasesIt) {
  FinishedRun run;
  ASSERT_TRUE(run.Wait());
  const HWND button = run.program->CloseButton();
  PressMouseButton(button, MiddleOf(button));
  EXPECT_TRUE(WaitUntil([&] { return run.program->Focus() == button; }));
  EXPECT_TRUE(run.program->Runs());
  DragPointer(button, MiddleOf(button), {-40, -20});
  EXPECT_EQ(run.program->WaitForExit(), 0u);
  ReleaseMouseButton(GetDesktopWindow(), {0, 0});
}

INSTANTIATE_TEST_SUITE_P(Dialog, DialogOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
