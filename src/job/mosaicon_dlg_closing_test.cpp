// What stands in the queue of the window while the program is busy: whatever it is, and wherever in a job it
// is looked at, a window that was closed opens nothing more and the program comes to its end.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <utility>

#include "job/testing/dialog_fixture.h"
#include "job/tool_items.h"
#include "kvtools/kvtools.h"
#include "resources/resource.h"

namespace {

constexpr ULONGLONG kPatience = 400000;  // ms
constexpr DWORD kLongTool = 600000;      // ms
constexpr DWORD kShortTool = 1000;       // ms
constexpr UINT kBusyMessage = WM_APP + 100;

// Of a job. Some are a box that waits for its answer, others work that takes its time.
enum class Moment {
  kReading,  // the orthophoto, when Start was pressed
  kMissingTarget,
  kQuestion,  // whether to overwrite
  kTranslating,
  kWarping,
  kTiling,
  kPosition,  // the thread of the tool waits for the progress bar
  kAbortQuestion,
  kPicture,  // of the first of two orthophotos
  kLastPicture,
  kReport,
};

enum class Wish { kStart, kCancel, kClose, kCloseByFrame, kAbout, kUpload, kExit };
using Wishes = std::vector<Wish>;

struct Box {
  const char* textOrTitle;
  Moment moment;
  int answer;
  bool endsJob;
};

constexpr Box kBoxes[] = {
    {"Do you really want to abort current process?", Moment::kAbortQuestion, IDYES, false},
    {"Folders are not empty.", Moment::kQuestion, IDYES, false},
    {"Unable to create folder ", Moment::kMissingTarget, IDOK, true},
    {"Process Completed", Moment::kReport, IDOK, true},
};

BOOL CALLBACK AddText(HWND window, LPARAM text) {
  char buffer[512] = "";
  GetWindowTextA(window, buffer, sizeof buffer);
  *reinterpret_cast<std::string*>(text) += std::string(buffer) + "\n";
  return TRUE;
}

// All that a dialog says, its title first.
std::string TextOf(HWND dialog) {
  std::string text;
  AddText(dialog, reinterpret_cast<LPARAM>(&text));
  EnumChildWindows(dialog, AddText, reinterpret_cast<LPARAM>(&text));
  return text;
}

BOOL CALLBACK AddDialog(HWND window, LPARAM dialogs) {
  char name[16] = "";
  GetClassNameA(window, name, sizeof name);
  if (IsWindowVisible(window) && lstrcmpA(name, "#32770") == 0) {
    reinterpret_cast<std::vector<HWND>*>(dialogs)->push_back(window);
  }
  return TRUE;
}

void Post(HWND main, Wish wish) {
  const std::map<Wish, int> commands = {{Wish::kStart, IDC_START},
                                        {Wish::kCancel, IDC_CANCEL_JOB},
                                        {Wish::kAbout, IDC_ABOUT},
                                        {Wish::kUpload, IDC_UPLOAD},
                                        {Wish::kExit, IDC_EXIT}};
  if (wish == Wish::kClose) {
    PostMessageA(main, WM_CLOSE, 0, 0);
  } else if (wish == Wish::kCloseByFrame) {
    PostMessageA(main, WM_SYSCOMMAND, SC_CLOSE, 0);
  } else {
    PostMessageA(main, WM_COMMAND, MAKEWPARAM(commands.at(wish), BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(main, commands.at(wish))));
  }
}

// The dialog runs on the test's thread, its user on another one.
class QueuedWishes : public DialogTest, public testing::WithParamInterface<std::tuple<Moment, Wishes>> {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(DialogTest::SetUp());
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = BusyProcedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "QueuedWishes";
    RegisterClassA(&windowClass);
    m_hBusy = CreateWindowExA(0, "QueuedWishes", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                              windowClass.hInstance, nullptr);
    ASSERT_NE(m_hBusy, nullptr);
    SetWindowLongPtrA(m_hBusy, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ASSERT_NO_FATAL_FAILURE(PrepareJob());
  }
  void TearDown() override {
    DestroyWindow(m_hBusy);
    DialogTest::TearDown();
  }

  Moment At() const { return std::get<Moment>(GetParam()); }
  void RunDialog();

  std::atomic<bool> m_bWished = false;
  std::string m_strEnd;
  bool m_bAskedToAbort = false;
  std::vector<std::string> m_vAlone;  // what was shown when the window was gone

 private:
  static LRESULT CALLBACK BusyProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<QueuedWishes*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message != kBusyMessage) return DefWindowProcA(window, message, wParam, lParam);
    self->BeBusyUntilAPositionComes();
    return 0;
  }

  void PrepareJob();
  void BeBusyUntilAPositionComes();
  void MakeWishes();
  void BeTheUser();
  void Look();
  void LookAtMain();
  void LookAtBox(HWND box, bool isAlone);
  void LookAtTools();
  void Once(bool& done, const std::function<void()>& act) {
    if (!std::exchange(done, true)) act();
  }

  const DWORD m_uiThread = GetCurrentThreadId();
  HWND m_hBusy = nullptr;
  std::string m_strInput;
  std::atomic<bool> m_bEnded = false;
  std::atomic<HWND> m_hMain = nullptr;
  std::atomic<bool> m_bStarted = false;
  // The user's own.
  bool m_bJobOver = false;
  bool m_bLastCloseDone = false;
  bool m_bBusyAsked = false;
  bool m_bCancelled = false;
  bool m_bTranslated = false;
};

void QueuedWishes::PrepareJob() {
  ASSERT_TRUE(CreateDirectoryA(m_folder.Path("in").c_str(), nullptr));
  m_strInput = MakeOrthophoto("in\\a.tif");
  if (At() == Moment::kPicture) m_strInput += "|" + MakeOrthophoto("in\\b.tif");
  const std::string target = m_folder.Path(At() == Moment::kMissingTarget ? "none\\out" : "out");
  KVT_WriteUserProfileString("Input", "TargetFolder", target.c_str());
  if (At() == Moment::kQuestion) {
    ASSERT_TRUE(CreateDirectoryA(target.c_str(), nullptr));
    WriteFile(target + "\\mine.txt", "mine");
  }
  if (At() == Moment::kTranslating || At() == Moment::kWarping) s_strSourceCode = "EPSG:3003";
  const bool isLong =
      At() == Moment::kTiling || At() == Moment::kTranslating || At() == Moment::kAbortQuestion;
  LetToolsTake(isLong ? kLongTool : kShortTool);
  if (At() == Moment::kReading) {
    s_onRead = [this] {
      if (m_bStarted) MakeWishes();
    };
  }
  if (At() == Moment::kPicture || At() == Moment::kLastPicture) s_onPicture = [this] { MakeWishes(); };
}

void QueuedWishes::RunDialog() {
  std::thread user([this] { BeTheUser(); });
  // Start reads what was typed.
  CMosaiconDlg dialog(At() == Moment::kReading ? "" : m_strInput, ProgramPath(), m_opener);
  dialog.DoModal();
  m_bEnded = true;
  user.join();
}

void QueuedWishes::BeBusyUntilAPositionComes() {
  const ULONGLONG deadline = GetTickCount64() + kPatience / 2;
  while ((HIWORD(GetQueueStatus(QS_SENDMESSAGE)) & QS_SENDMESSAGE) == 0 && GetTickCount64() < deadline) {
    Sleep(5);
  }
  EXPECT_LT(GetTickCount64(), deadline) << "no position came";
  MakeWishes();
}

void QueuedWishes::MakeWishes() {
  if (m_bWished.exchange(true)) return;
  for (const Wish wish : std::get<Wishes>(GetParam())) Post(m_hMain, wish);
}

void QueuedWishes::BeTheUser() {
  const ULONGLONG deadline = GetTickCount64() + kPatience;
  while (!m_bEnded) {
    if (GetTickCount64() > deadline) {
      // The window's thread hangs, and nothing can be done for it.
      std::printf("The program does not end.\n");
      std::fflush(stdout);
      TerminateProcess(GetCurrentProcess(), 1);
    }
    Look();
    Sleep(10);
  }
}

void QueuedWishes::Look() {
  const bool isGone = m_hMain != nullptr && !IsWindow(m_hMain);
  std::vector<HWND> dialogs;
  EnumThreadWindows(m_uiThread, AddDialog, reinterpret_cast<LPARAM>(&dialogs));
  LookAtTools();
  for (const HWND dialog : dialogs) {
    // The window's thread, which may be busy, answers for its texts: it is asked as little as possible.
    if (m_hMain == nullptr) m_hMain = dialog;
    if (dialog == m_hMain) {
      LookAtMain();
    } else {
      LookAtBox(dialog, isGone);
    }
  }
}

void QueuedWishes::LookAtMain() {
  if (!IsWindowEnabled(m_hMain)) return;
  if (!m_bStarted) {
    if (At() == Moment::kReading) SetDlgItemTextA(m_hMain, IDC_ORTHOPHOTO, m_strInput.c_str());
    m_bStarted = true;
    Post(m_hMain, Wish::kStart);
  } else if (m_bJobOver) {
    Once(m_bLastCloseDone, [this] { Post(m_hMain, Wish::kClose); });
  }
}

void QueuedWishes::LookAtBox(HWND box, bool isAlone) {
  const std::string text = TextOf(box);
  if (isAlone) m_vAlone.push_back(text);
  for (const Box& known : kBoxes) {
    if (text.find(known.textOrTitle) == std::string::npos) continue;
    if (known.moment == At()) MakeWishes();
    if (known.endsJob) m_strEnd = text;
    if (known.moment == Moment::kAbortQuestion) m_bAskedToAbort = true;
    // Behind the wishes, in the same queue.
    PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(known.answer), 0);
    m_bJobOver = m_bJobOver || known.endsJob;
  }
}

void QueuedWishes::LookAtTools() {
  if (m_bWished || CountTools() == 0) return;
  switch (At()) {
    case Moment::kTranslating:
    case Moment::kTiling:
      MakeWishes();
      break;
    case Moment::kWarping:
      if (g_pTranslateJob != nullptr) {
        Once(m_bTranslated, [this] { WriteFile(m_folder.Path("in\\a.vrt"), "translated"); });
      } else if (g_pWarpJob != nullptr) {
        MakeWishes();
      }
      break;
    case Moment::kPosition:
      Once(m_bBusyAsked, [this] { PostMessageA(m_hBusy, kBusyMessage, 0, 0); });
      break;
    case Moment::kAbortQuestion:
      Once(m_bCancelled, [this] { Post(m_hMain, Wish::kCancel); });
      break;
    default:
      break;
  }
}

TEST_P(QueuedWishes, OpenNothingAndLeaveNothing) {
  RunDialog();
  EXPECT_TRUE(m_bWished) << "the moment did not come; the job ended with: " << m_strEnd;
  EXPECT_EQ(m_opener.opened, std::vector<std::string>());
  EXPECT_EQ(m_vAlone, std::vector<std::string>());
  // Only the script can be aborted.
  if (At() == Moment::kTranslating || At() == Moment::kWarping) {
    EXPECT_FALSE(m_bAskedToAbort);
  }
  EXPECT_EQ(g_pTilesJob.load(), nullptr);
  EXPECT_EQ(g_pTranslateJob.load(), nullptr);
  EXPECT_EQ(g_pWarpJob.load(), nullptr);
  EXPECT_EQ(WaitForTools(0), 0);
}

INSTANTIATE_TEST_SUITE_P(
    AtEachMoment, QueuedWishes,
    testing::Combine(
        testing::Values(Moment::kReading, Moment::kMissingTarget, Moment::kQuestion, Moment::kTranslating,
                        Moment::kWarping, Moment::kTiling, Moment::kPosition, Moment::kAbortQuestion,
                        Moment::kPicture, Moment::kLastPicture, Moment::kReport),
        testing::Values(Wishes{Wish::kClose, Wish::kClose, Wish::kAbout, Wish::kUpload, Wish::kCancel},
                        Wishes{Wish::kCancel, Wish::kCloseByFrame, Wish::kAbout, Wish::kClose},
                        Wishes{Wish::kUpload, Wish::kStart, Wish::kExit, Wish::kClose})));

}  // namespace
