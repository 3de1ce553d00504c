// The About box and the user's data.
#include <algorithm>

#include "ui/mosaicon_fixture.h"

namespace {

constexpr char kAboutTitle[] = "About Mosaicon";
constexpr char kUserDataTitle[] = "User Data - https://www.kovel-software.example";
constexpr WPARAM kAboutCommand = 16;

// As the shell shows it.
std::string FileVersionOf(const std::string& path) {
  DWORD ignored = 0;
  std::vector<char> resource(GetFileVersionInfoSizeA(path.c_str(), &ignored));
  void* text = nullptr;
  UINT size = 0;
  if (!GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) ||
      !VerQueryValueA(resource.data(), "\\StringFileInfo\\040904E4\\FileVersion", &text, &size)) {
    return "";
  }
  return static_cast<const char*>(text);
}

class Dialogs : public MosaiconTest {
 protected:
  void TearDown() override {
    if (IsAnyDialogOpen()) StopProgram();
    MosaiconTest::TearDown();
  }

  bool IsAnyDialogOpen() { return Running().Windows().size() > 1; }

  Window OpenAbout() {
    Main().Post(WM_SYSCOMMAND, kAboutCommand);
    return Running().WaitFor(kAboutTitle);
  }

  static void Close(const Window& dialog, int button) {
    dialog.Item(button).Click();
    EXPECT_TRUE(dialog.WaitUntilGone());
  }

  static std::vector<std::optional<std::string>> StoredUserData() {
    std::vector<std::optional<std::string>> stored;
    for (const char* key :
         {"UserData_Name", "UserData_Surname", "UserData_EMail", "UserData_Company", "UserData_Tel"}) {
      stored.push_back(ReadProfile("UserData", key));
    }
    return stored;
  }

  static void Fill(const Window& form, const std::vector<std::string>& values) {
    const int fields[] = {IDC_USER_NAME, IDC_USER_SURNAME, IDC_USER_EMAIL, IDC_USER_COMPANY,
                          IDC_USER_TELEPHONE};
    for (size_t i = 0; i < values.size(); ++i) form.Item(fields[i]).SetText(values[i]);
  }
};

using Values = std::vector<std::optional<std::string>>;

class About : public Dialogs {
 protected:
  void ExpectAbout(const Window& about) {
    ASSERT_TRUE(about);
    EXPECT_EQ(about.Text(), kAboutTitle);
    EXPECT_EQ(about.Item(IDC_VERSION).Text(), "Mosaicon ver. " + FileVersionOf(StageProgram()));
    EXPECT_FALSE(Main().IsEnabled());
    Close(about, IDOK);
    EXPECT_TRUE(Main().WaitUntilEnabled());
  }
};

TEST_F(About, IsOpenedByButtonAndSystemMenu) {
  ASSERT_NE(FileVersionOf(StageProgram()), "");
  ExpectAbout(OpenAbout());
  Item(IDC_ABOUT).Click();
  ExpectAbout(Running().WaitFor(kAboutTitle));
}

// Texts of menus cannot be read from outside, but entries can be chosen: upwards from the top is the last.
TEST_F(About, IsTheLastEntryOfTheSystemMenu) {
  Main().Post(WM_SYSCOMMAND, SC_KEYMENU, ' ');
  ASSERT_TRUE(WaitUntil([this] {
    const auto windows = Running().Windows();
    return std::any_of(windows.begin(), windows.end(),
                       [](const Window& window) { return window.ClassName() == "#32768"; });
  }));
  Main().PressKey(VK_UP);
  Main().PressKey(VK_RETURN);
  ExpectAbout(Running().WaitFor(kAboutTitle));
}

TEST_F(About, IsOpenedWhileAJobRuns) {
  FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out")});
  PressStart();
  ASSERT_TRUE(WaitUntilTiling());
  ExpectAbout(OpenAbout());
  EXPECT_TRUE(IsWorking());
  Item(IDC_ABOUT).Click();
  ExpectAbout(Running().WaitFor(kAboutTitle));
  EXPECT_TRUE(IsWorking());
  Item(IDC_CANCEL_JOB).Click();
  NextMessage(IDYES);
  EXPECT_TRUE(TakeReport());
}

TEST_F(About, GivesCredit) {
  const Window about = OpenAbout();
  ASSERT_TRUE(about);
  std::vector<std::string> texts;
  for (const Window& child : about.Children()) texts.push_back(child.Text());
  // In the order of the tab key, without the icon.
  texts.erase(texts.begin());
  EXPECT_EQ(texts, (std::vector<std::string>{"Mosaicon ver. " + FileVersionOf(StageProgram()),
                                             "Orthophotos as tile pyramids for Google Earth and web maps",
                                             "Kovel Software", "Web site", "Contact", "Credits",
                                             "Mosaicon is based on", "Gdal2Tiles", "open source project",
                                             "&Change User Data", "OK"}));
  Close(about, IDOK);
}

// What opens web pages and letters in this prefix writes down instead what it was to open.
TEST_F(About, LinksToTheMakerAndToGdal2Tiles) {
  const std::string opened = Path("opened.txt");
  const std::string command = "C:\\windows\\system32\\cmd.exe /c echo %1>>" + opened;
  for (const char* scheme : {"https", "mailto"}) {
    const std::string key = std::string(scheme) + "\\shell\\open\\command";
    ASSERT_EQ(RegSetKeyValueA(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, command.c_str(),
                              static_cast<DWORD>(command.size() + 1)),
              ERROR_SUCCESS);
  }
  const Window about = OpenAbout();
  ASSERT_TRUE(about);
  std::string expected;
  const std::pair<int, const char*> links[] = {
      {IDC_MAKER_WEB, "https://www.kovel-software.example"},
      {IDC_MAKER_EMAIL, "mailto:info@kovel-software.example"},
      {IDC_GDAL2TILES_PAGE, "https://gdal.org/programs/gdal2tiles.html"},
  };
  for (const auto& [link, address] : links) {
    about.Item(link).Click();
    expected += std::string(address) + "\r\n";
    EXPECT_TRUE(WaitUntil([&] { return FileExists(opened) && ReadFile(opened) == expected; })) << address;
  }
  Close(about, IDOK);
}

class UserDataForm : public Dialogs {
 protected:
  Window Open() {
    const Window about = OpenAbout();
    about.Item(IDC_CHANGE_USER_DATA).Click();
    return Running().WaitFor(kUserDataTitle);
  }
  void CloseAbout() { Close(Running().Find(kAboutTitle), IDOK); }

  const Values m_before = {"Ada", "Byron", "ada@example.org", {}, {}};
};

TEST_F(UserDataForm, ShowsWhatIsStored) {
  WriteProfile("UserData", "UserData_Company", "Engine & Co");
  const Window form = Open();
  ASSERT_TRUE(form);
  EXPECT_EQ(form.Text(), kUserDataTitle);
  EXPECT_EQ(form.Item(IDC_USER_EXPLANATION).Text(),
            "Please fill this simple form. Those data will be stored in your PC and they will be used to "
            "complete any report you send to Kovel Software.");
  EXPECT_EQ(form.Item(IDC_USER_NAME_LABEL).Text(), "Name (*)");
  EXPECT_EQ(form.Item(IDC_USER_SURNAME_LABEL).Text(), "Surname (*)");
  EXPECT_EQ(form.Item(IDC_USER_EMAIL_LABEL).Text(), "Email (*)");
  EXPECT_EQ(form.Item(IDC_USER_COMPANY_LABEL).Text(), "Company");
  EXPECT_EQ(form.Item(IDC_USER_TELEPHONE_LABEL).Text(), "Telephone");
  EXPECT_EQ(form.Item(IDC_USER_REQUIRED).Text(), "(*) required");
  EXPECT_EQ(form.Item(IDC_USER_NAME).Text(), "Ada");
  EXPECT_EQ(form.Item(IDC_USER_SURNAME).Text(), "Byron");
  EXPECT_EQ(form.Item(IDC_USER_EMAIL).Text(), "ada@example.org");
  EXPECT_EQ(form.Item(IDC_USER_COMPANY).Text(), "Engine & Co");
  EXPECT_EQ(form.Item(IDC_USER_TELEPHONE).Text(), "");
  Close(form, IDCANCEL);
  CloseAbout();
}

TEST_F(UserDataForm, InsistsOnWhatIsRequired) {
  const Window form = Open();
  ASSERT_TRUE(form);
  for (const int field : {IDC_USER_NAME, IDC_USER_SURNAME, IDC_USER_EMAIL}) {
    Fill(form, {"Grace", "Hopper", "grace@example.org", "Navy", "1"});
    form.Item(field).SetText("");
    form.Item(IDOK).Click();
    EXPECT_EQ(NextMessage(), (Told{"Name, Surname and EMail address are required!", BoxIcon::kWarning}));
    EXPECT_TRUE(form.Exists());
    EXPECT_EQ(StoredUserData(), m_before);
  }
  Close(form, IDCANCEL);
  CloseAbout();
  EXPECT_EQ(StoredUserData(), m_before);
}

TEST_F(UserDataForm, IsForgottenByCancel) {
  const Window form = Open();
  Fill(form, {"Grace", "Hopper", "grace@example.org", "Navy", "1"});
  Close(form, IDCANCEL);
  CloseAbout();
  EXPECT_EQ(StoredUserData(), m_before);
}

TEST_F(UserDataForm, IsStoredByOk) {
  const Window form = Open();
  Fill(form, {"Grace", "Hopper", "grace@example.org", "Navy", "1"});
  Close(form, IDOK);
  CloseAbout();
  EXPECT_EQ(StoredUserData(), (Values{"Grace", "Hopper", "grace@example.org", "Navy", "1"}));
}

TEST_F(UserDataForm, StoresWhatIsNotRequiredAlone) {
  const Window form = Open();
  form.Item(IDC_USER_COMPANY).SetText("Engine & Co");
  form.Item(IDC_USER_TELEPHONE).SetText("+44 1");
  Close(form, IDOK);
  CloseAbout();
  EXPECT_EQ(StoredUserData(), (Values{"Ada", "Byron", "ada@example.org", "Engine & Co", "+44 1"}));
}

class FirstStart : public Dialogs {
 protected:
  void SetUp() override {
    EmptyProfile();
    StopProgram();
    m_pProgram = std::make_unique<Program>(StageProgram());
    m_form = m_pProgram->WaitFor(kUserDataTitle);
    ASSERT_TRUE(m_form) << "the form was not shown";
    EXPECT_FALSE(m_pProgram->Find(kMainTitle));
  }

  std::unique_ptr<Program> m_pProgram;
  Window m_form;
};

TEST_F(FirstStart, AsksForTheUsersData) {
  Fill(m_form, {"Grace", "Hopper", "grace@example.org"});
  Close(m_form, IDOK);
  ASSERT_TRUE(Use(std::move(m_pProgram)));
  EXPECT_EQ(StoredUserData(), (Values{"Grace", "Hopper", "grace@example.org", "", ""}));
}

TEST_F(FirstStart, GoesOnWithoutThem) {
  Close(m_form, IDCANCEL);
  ASSERT_TRUE(Use(std::move(m_pProgram)));
  EXPECT_EQ(StoredUserData(), Values(5));
}

}  // namespace
