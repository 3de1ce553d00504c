// Choosing the orthophotos: typing, browsing, dropping, and the command line.
#include <filesystem>

#include "ui/dropping.h"
#include "ui/mosaicon_fixture.h"

namespace {

const Told kBadFile = {"Unable to get geographic information into selected file", BoxIcon::kWarning};
const Told kBadFolder = {"No valid orthophoto found inside selected folder", BoxIcon::kWarning};
const Told kNoOrthophoto = {"Select the input orthophoto path", BoxIcon::kInformation};
// Start asks for it when it has an orthophoto.
const Told kNoTarget = {"Select the target folder", BoxIcon::kInformation};

std::string LowerCase(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return text;
}

class Input : public MosaiconTest {
 protected:
  std::string MakeBadFile(const std::string& name = "bad.tif") {
    WriteFile(Path(name), "no image");
    return Path(name);
  }
  std::string MakeFolder(const std::string& name) {
    std::filesystem::create_directory(Path(name));
    return Path(name);
  }
  Window Field() { return Item(IDC_ORTHOPHOTO); }
  void Type(const std::string& path) {
    ASSERT_TRUE(Field().TakeFocus());
    Field().SetText(path);
  }
  // Does not wait for the focus to arrive: a message may have it already.
  void Leave() { Main().Post(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_MAP_TITLE).Handle()), TRUE); }
  Told AnswerOfStart() {
    PressStart();
    return NextMessage();
  }
};

TEST_F(Input, PickFolderClearsTheFieldWheneverItIsClicked) {
  FillIn({});
  for (const bool checked : {true, false, true, false}) {
    Field().SetText("c:\\somewhere");
    Item(IDC_PICK_FOLDER).Click();
    EXPECT_TRUE(WaitUntil([this] { return Field().Text().empty(); }));
    EXPECT_EQ(Item(IDC_PICK_FOLDER).IsChecked(), checked);
  }
}

TEST_F(Input, UrlFieldFollowsItsBox) {
  for (const bool wanted : {true, false}) {
    ASSERT_TRUE(Item(IDC_WEB_OUTPUT).Check(wanted));
    EXPECT_TRUE(WaitUntil([&] { return Item(IDC_TARGET_URL).IsEnabled() == wanted; }));
  }
}

TEST_F(Input, EnterAndEscapeDoNotCloseTheWindow) {
  FillIn({});
  for (const int id : {IDC_MAP_TITLE, IDC_ORTHOPHOTO, IDC_TARGET_FOLDER, IDC_GOOGLE_KEY}) {
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
      ASSERT_TRUE(Item(id).TakeFocus());
      Item(id).PressKey(key);
      EXPECT_TRUE(IsSilent()) << "after key " << key << " in " << id;
      EXPECT_TRUE(Running().IsRunning());
      EXPECT_TRUE(Main().IsVisible());
    }
  }
}

TEST_F(Input, TypedFileIsReadWhenTheFieldIsLeft) {
  FillIn({});
  Type(MakeBadFile());
  Leave();
  EXPECT_EQ(NextMessage(), kBadFile);
  EXPECT_TRUE(IsSilent());
}

TEST_F(Input, TypedFolderIsSearchedWhenTheFieldIsLeft) {
  FillIn({.folderMode = true});
  Type(MakeFolder("empty"));
  Leave();
  EXPECT_EQ(NextMessage(), kBadFolder);
  EXPECT_TRUE(IsSilent());
}

TEST_F(Input, TypedPathIsReadByEnter) {
  FillIn({});
  Type(MakeBadFile());
  Field().PressKey(VK_RETURN);
  EXPECT_EQ(NextMessage(), kBadFile);
  EXPECT_TRUE(IsSilent());
}

// What is read already is not read, and told, again.
TEST_F(Input, PathIsReadOnceUntilItChanges) {
  FillIn({});
  Type(MakeBadFile());
  Leave();
  EXPECT_EQ(NextMessage(), kBadFile);
  EXPECT_EQ(AnswerOfStart(), kNoOrthophoto);
  Type(MakeBadFile("worse.tif"));
  Leave();
  EXPECT_EQ(NextMessage(), kBadFile);
}

TEST_F(Input, TypedPathIsReadByStartWhenTheFocusNeverLeft) {
  FillIn({});
  Type(MakeOrthophoto("good.tif"));
  // As its access key does it.
  Main().Post(WM_COMMAND, MAKEWPARAM(IDC_START, BN_CLICKED),
              reinterpret_cast<LPARAM>(Item(IDC_START).Handle()));
  EXPECT_EQ(NextMessage(), kNoTarget);
  EXPECT_EQ(Main().Focus(), Field());
}

TEST_F(Input, FolderIsReadWithWhatIsUsableInIt) {
  FillIn({.folderMode = true});
  const std::string folder = MakeFolder("several");
  MakeOrthophoto("several\\good.tif");
  MakeBadFile("several\\bad.tif");
  Type(folder);
  ASSERT_TRUE(Item(IDC_MAP_TITLE).TakeFocus());
  EXPECT_TRUE(IsSilent());
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

class Browsing : public Input {
 protected:
  // Opens the dialog of the shell by the key for it, and lets it go with a path.
  void Browse(int field, const std::string& path) {
    ASSERT_TRUE(Item(field).TakeFocus());
    Item(field).PressKey(VK_F4);
    Window dialog;
    ASSERT_TRUE(WaitUntil([&] {
      for (const Window& window : Running().Windows()) {
        if (window != Main() && window.Item(IDOK) && EditOf(window)) dialog = window;
      }
      return static_cast<bool>(dialog);
    }));
    EditOf(dialog).SetText(path);
    dialog.Item(IDOK).Click();
    ASSERT_TRUE(dialog.WaitUntilGone());
  }

  static Window EditOf(const Window& dialog) {
    Window edit;
    EnumChildWindows(
        dialog.Handle(),
        [](HWND child, LPARAM found) -> BOOL {
          if (Window(child).ClassName() != "Edit") return TRUE;
          *reinterpret_cast<Window*>(found) = Window(child);
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&edit));
    return edit;
  }
};

TEST_F(Browsing, ReadsTheChosenFile) {
  FillIn({});
  const std::string good = MakeOrthophoto("good.tif");
  Browse(IDC_ORTHOPHOTO, good);
  EXPECT_TRUE(WaitUntil([&] { return Field().Text() == good; }));
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(Browsing, TellsAboutAFileThatCannotBeUsed) {
  FillIn({});
  const std::string bad = MakeBadFile();
  Browse(IDC_ORTHOPHOTO, bad);
  EXPECT_EQ(NextMessage(), kBadFile);
  EXPECT_EQ(Field().Text(), bad);
}

TEST_F(Browsing, TakesATargetFolder) {
  FillIn({});
  const std::string folder = MakeFolder("results");
  Browse(IDC_TARGET_FOLDER, folder);
  EXPECT_TRUE(WaitUntil([&] { return Item(IDC_TARGET_FOLDER).Text() == folder; }));
}

class Dropping : public Input {
 protected:
  void Drop(const std::vector<std::string>& paths) { ASSERT_TRUE(DropFiles(Running(), Main(), paths)); }
  bool Shows(const std::string& text, bool folderMode) {
    return WaitUntil(
        [&] { return Field().Text() == text && Item(IDC_PICK_FOLDER).IsChecked() == folderMode; });
  }
};

TEST_F(Dropping, OneFileIsTaken) {
  FillIn({.folderMode = true});
  const std::string good = MakeOrthophoto("good.tif");
  Drop({good});
  EXPECT_TRUE(Shows(good, false));
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(Dropping, OneFolderIsSearched) {
  FillIn({});
  const std::string folder = MakeFolder("several");
  MakeOrthophoto("several\\good.tif");
  Drop({folder});
  EXPECT_TRUE(Shows(folder, true));
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(Dropping, SeveralFilesAreTakenAsAFolder) {
  FillIn({});
  const std::vector<std::string> files = {MakeOrthophoto("one.tif"), MakeOrthophoto("two.tif")};
  Drop(files);
  EXPECT_TRUE(Shows(Path() + "\\", true));
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(Dropping, WhatCannotBeLookedAtIsNoFolder) {
  FillIn({.folderMode = true});
  const std::string strange = Path("?????.tif");
  Drop({strange});
  EXPECT_EQ(NextMessage(), kBadFile);
  EXPECT_TRUE(Shows(strange, false));
}

TEST_F(Dropping, WhatCannotBeUsedIsTold) {
  FillIn({});
  Drop({MakeBadFile()});
  EXPECT_EQ(NextMessage(), kBadFile);
  Drop({MakeBadFile("one.tif"), MakeBadFile("two.tif")});
  EXPECT_EQ(NextMessage(), kBadFolder);
}

class CommandLine : public Input {};

TEST_F(CommandLine, WithOneFileShowsItInLowerCase) {
  const std::string file = MakeOrthophoto("Good.TIF");
  ASSERT_TRUE(Restart("\"" + file + "\""));
  EXPECT_EQ(Field().Text(), LowerCase(file));
  EXPECT_FALSE(Item(IDC_PICK_FOLDER).IsChecked());
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(CommandLine, WithSeveralFilesShowsTheirFolder) {
  ASSERT_TRUE(Restart(MakeOrthophoto("one.tif") + "|" + MakeOrthophoto("two.tif")));
  EXPECT_EQ(Field().Text(), LowerCase(Path()) + "\\");
  EXPECT_TRUE(Item(IDC_PICK_FOLDER).IsChecked());
  EXPECT_EQ(AnswerOfStart(), kNoTarget);
}

TEST_F(CommandLine, WithAProgramThatIsNotQuotedIsNotRead) {
  const std::string program = StageProgram();
  ASSERT_EQ(program.find(' '), std::string::npos);
  ASSERT_TRUE(Use(Program::FromCommandLine(program + " " + MakeOrthophoto("a.tif"))));
  EXPECT_EQ(Field().Text(), "");
  EXPECT_EQ(AnswerOfStart(), kNoOrthophoto);
}

}  // namespace
