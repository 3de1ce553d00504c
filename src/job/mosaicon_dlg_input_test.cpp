// How paths get into the form: typed, dropped, browsed for and given on the command line.
#include <gtest/gtest.h>
#include <windows.h>

// After windows.h.
#include <shlobj.h>

#include "job/testing/form_fixture.h"
#include "mfc/app.h"
#include "resources/resource.h"

namespace {

class Input : public FormTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(FormTest::SetUp());
    ASSERT_GT(GetCurrentDirectoryA(sizeof m_before, m_before), 0U);
    ASSERT_TRUE(SetCurrentDirectoryA(m_folder.Path().c_str()));
  }
  void TearDown() override {
    SetCurrentDirectoryA(m_before);
    FormTest::TearDown();
  }

  UiDriver::Step Typing(int id, const std::string& text) const {
    return [this, id, text] { return SetDlgItemTextA(Main(), id, text.c_str()) != FALSE; };
  }
  UiDriver::Step Expecting(int id, const std::string& text) const {
    return [this, id, text] {
      EXPECT_EQ(Text(id), text);
      return true;
    };
  }

  char m_before[MAX_PATH] = "";
};

TEST_F(Input, IsMadeAbsoluteByStart) {
  const std::string orthophoto = MakeOrthophoto("a.tif");
  const std::string quoted = "\"" + orthophoto + "\"";
  for (const std::string& typed : {std::string("a.tif"), std::string(".\\none\\..\\a.tif"), quoted}) {
    Work({Typing(IDC_ORTHOPHOTO, typed), Posting(IDC_START), ReadingBox("Select the target folder"),
          WaitingUntilFree(), Expecting(IDC_ORTHOPHOTO, orthophoto)});
  }
}

TEST_F(Input, OfTheCommandLineIsMadeAbsolute) {
  const std::string a = MakeOrthophoto("a.tif");
  MakeOrthophoto("b.tif");
  Work({Expecting(IDC_ORTHOPHOTO, a), Posting(IDC_START), ReadingBox("Select the target folder"),
        WaitingUntilFree()},
       "a.tif");
  Work({Expecting(IDC_ORTHOPHOTO, m_folder.Path() + "\\"), Posting(IDC_START),
        ReadingBox("Select the target folder"), WaitingUntilFree()},
       "a.tif|b.tif");
}

TEST_F(Input, IsToldOfBeforeAJob) {
  MakeOrthophoto("a.tif");
  const auto telling = [this](const std::string& part) {
    return [this, part] {
      EXPECT_NE(Text(IDC_INPUT_SUMMARY).find(part), std::string::npos) << Text(IDC_INPUT_SUMMARY);
      return true;
    };
  };
  Work({telling(" pixels of "), telling("\nThe map: zoom level"), Posting(IDC_PICK_FOLDER),
        telling("Choose an orthophoto")},
       "a.tif");
  MakeOrthophoto("b.tif");
  Work({telling("2 orthophotos with pixels of ")}, "a.tif|b.tif");
}

// Its text is shown, without a message; Start tells that it cannot be used.
TEST_F(Input, OfTheCommandLineThatCannotBeReadIsShown) {
  Work({Expecting(IDC_ORTHOPHOTO, m_folder.Path("none.tif")), Posting(IDC_START),
        ReadingBox("Select the input orthophoto path"), WaitingUntilFree()},
       "none.tif");
}

TEST_F(Input, IsLookedAtAgainByStart) {
  Work({Posting(IDC_START), ReadingBox("Select the input orthophoto path"), WaitingUntilFree(),
        [this] {
          MakeOrthophoto("late.tif");
          return true;
        },
        Posting(IDC_START), ReadingBox("Select the target folder"), WaitingUntilFree()},
       "late.tif");
  Work({Posting(IDC_START), ReadingBox("Select the input orthophoto path"), WaitingUntilFree(),
        [this] {
          MakeOrthophoto("later.tif");
          return true;
        },
        Posting(IDC_START), ReadingBox("Select the target folder"), WaitingUntilFree()},
       "none.tif|later.tif");
}

class Dropping : public Input {
 protected:
  // As the shell does it; the receiver releases the block.
  UiDriver::Step DroppingPaths(const std::vector<std::string>& paths) const {
    std::string text;
    for (const std::string& path : paths) text += path + '\0';
    return [this, text] {
      const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + text.size() + 1);
      auto* header = static_cast<DROPFILES*>(GlobalLock(block));
      header->pFiles = sizeof(DROPFILES);
      text.copy(reinterpret_cast<char*>(header + 1), text.size());
      GlobalUnlock(block);
      return PostMessageA(Main(), WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0) != FALSE;
    };
  }
  UiDriver::Step WaitingFor(const std::string& shown, bool folderMode) const {
    return [this, shown, folderMode] {
      return Text(IDC_ORTHOPHOTO) == shown &&
             (IsDlgButtonChecked(Main(), IDC_PICK_FOLDER) != FALSE) == folderMode;
    };
  }
  UiDriver::Step TickingPickFolder() const {
    return [this] {
      Press(IDC_PICK_FOLDER);
      return true;
    };
  }
  std::string MakeFolder(const char* name) const {
    CreateDirectoryA(m_folder.Path(name).c_str(), nullptr);
    return m_folder.Path(name);
  }
};

// As one whose name the code page cannot express.
TEST_F(Dropping, WhatCannotBeLookedAtIsAFile) {
  const std::string strange = m_folder.Path("?????.tif");
  Work({TickingPickFolder(), DroppingPaths({strange}),
        ReadingBox("Unable to get geographic information into selected file"), WaitingUntilFree(),
        WaitingFor(strange, false)});
}

TEST_F(Dropping, FoldersThatHoldOneOrthophotoShowIt) {
  const std::string empty = MakeFolder("empty");
  const std::string full = MakeFolder("full");
  const std::string orthophoto = MakeOrthophoto("full\\a.tif");
  Work({TickingPickFolder(), DroppingPaths({empty, full}), WaitingFor(orthophoto, false), Posting(IDC_START),
        ReadingBox("Select the target folder"), WaitingUntilFree()});
}

TEST_F(Dropping, NothingUsableIsTold) {
  const std::string bad = m_folder.Path("bad.tif");
  WriteFile(bad, "no image");
  const std::string empty = MakeFolder("empty");
  const std::string alsoEmpty = MakeFolder("also empty");
  Work({TickingPickFolder(), DroppingPaths({empty, alsoEmpty}),
        ReadingBox("No valid orthophoto found inside selected folder"), WaitingUntilFree(),
        WaitingFor("", false), DroppingPaths({bad, empty}),
        ReadingBox("Unable to get geographic information into selected file"), WaitingUntilFree(),
        WaitingFor(bad, false)});
}

TEST_F(Dropping, WhatComesTwiceIsTakenOnce) {
  const std::string folder = MakeFolder("full");
  MakeOrthophoto("full\\a.tif");
  MakeOrthophoto("full\\b.tif");
  int read = 0;
  s_onRead = [&read] { ++read; };
  Work({DroppingPaths({folder, m_folder.Path("FULL\\B.TIF")}), WaitingFor(m_folder.Path("FULL\\"), true)});
  EXPECT_EQ(read, 2);
}

// It is not left for good.
TEST_F(Input, IsNotReadWhenBrowsingIsCancelled) {
  const CShellManager shell;
  int read = 0;
  s_onRead = [&read] { ++read; };
  Work({Typing(IDC_ORTHOPHOTO, "c:\\half a pa"),
        [this] {
          SetFocus(Item(IDC_ORTHOPHOTO));
          return PostKey(Item(IDC_ORTHOPHOTO), VK_F4);
        },
        [this] {
          const HWND dialog = FindDialogInFrontOf(Main());
          return dialog != nullptr && PostCommand(dialog, IDCANCEL);
        },
        WaitingUntilFree()});
  EXPECT_EQ(read, 0);
}

TEST_F(Input, TargetFolderIsMadeAbsoluteByStart) {
  const std::string orthophoto = MakeOrthophoto("a.tif");
  const auto report = [this] {
    const HWND dialog = FindDialogInFrontOf(Main());
    return dialog != nullptr && TextOf(dialog) == "Process Completed" && PostCommand(dialog, IDOK);
  };
  Work({Typing(IDC_TARGET_FOLDER, "my maps"), Posting(IDC_START), report, WaitingUntilFree(),
        Expecting(IDC_TARGET_FOLDER, m_folder.Path("my_maps"))},
       orthophoto);
  EXPECT_TRUE(FileExists(m_folder.Path("my_maps")));
  EXPECT_EQ(Stored("TargetFolder"), m_folder.Path("my_maps").substr(0, 63));
}

}  // namespace
