// The main dialog in the process of its test, with tools that only talk and without GDAL: reading an
// orthophoto and making its picture are functions of the test, in which "the program is busy". For tests.
#ifndef MOSAICON_JOB_TESTING_DIALOG_FIXTURE_H_
#define MOSAICON_JOB_TESTING_DIALOG_FIXTURE_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "job/mosaicon_dlg.h"
#include "job/testing/tool_fixture.h"

// What the dialog opens; nothing is shown.
class FakeOpener : public DialogOpener {
 public:
  void ShowAbout() override { opened.emplace_back("about"); }
  void ShowUpload(const std::string& webUrl, const std::string& localFolder) override {
    opened.push_back("upload " + webUrl + " " + localFolder);
  }

  std::vector<std::string> opened;
};

class DialogTest : public ToolFixture {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::string ProgramPath() const { return m_folder.Path("Mosaicon.exe"); }
  // A file that counts as an orthophoto.
  std::string MakeOrthophoto(const std::string& name) const;
  // How long the tiling script and the two other tools take.
  static void LetToolsTake(DWORD milliseconds);

  FakeOpener m_opener;

 public:
  // Of the test that runs. What reading an orthophoto does besides; null: nothing. Its code: that of the
  // zone unless sourceCode says otherwise.
  static inline std::function<void()> s_onRead;
  static inline std::function<void()> s_onPicture;
  static inline std::string s_strSourceCode;
};

#endif  // MOSAICON_JOB_TESTING_DIALOG_FIXTURE_H_
