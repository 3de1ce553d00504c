// Fixture of the tests of the upload dialog: opens it from the main window, and works it.
#ifndef MOSAICON_TESTS_UI_PUBLISH_FIXTURE_H_
#define MOSAICON_TESTS_UI_PUBLISH_FIXTURE_H_

#include <map>
#include <string>
#include <vector>

#include "ui/mosaicon_fixture.h"

inline constexpr char kUploadTitle[] = "FTP Upload";

struct Login {
  std::string host;  // with its port
  std::string user = "ann";
  std::string password = "secret";
  std::string folder = {};  // remote
  bool firewallMode = true;
  bool ascii = false;
};

std::string TextFromEnvironment(const char* variable);

// The server that MOSAICON_FTP_HOST, _PORT, _USER, _PASSWORD and _ROOT tell of: how to log in, and the place
// of what it calls "/" plus name.
Login ServerLogin(bool firewallMode = true);
std::string Remote(const std::string& name = "");

// What a row of the list of remote entries shows.
struct Row {
  std::string name;
  std::string date;

  bool operator==(const Row&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Row& row);

// Every file and folder below a folder, by its path in it, with "\" at the end of folders; with the
// bytes of files.
using Tree = std::map<std::string, std::string>;
Tree ReadTree(const std::string& folder);
// What an upload makes of it: blanks in the names of folders are underscores.
Tree AsUploaded(const Tree& tree);
// Which paths two trees do not share, or hold other bytes in; short, for messages. Empty when they are
// the same.
std::vector<std::string> Differences(const Tree& tree, const Tree& other);

// A file with these bytes; the folders above it are made, too.
void WriteFileIn(const std::string& path, const std::string& bytes);
bool PathExists(const std::string& path);

class PublishTest : public MosaiconTest {
 protected:
  static void SetUpTestSuite() { MosaiconTest::SetUpTestSuite(); }
  static void TearDownTestSuite() { MosaiconTest::TearDownTestSuite(); }
  void TearDown() override;

  // Presses Upload in the main window.
  bool OpenUpload(const std::string& localFolder, const std::string& webUrl = "");
  // Presses Exit and waits until the dialog is gone.
  bool CloseUpload();
  Window Ftp() { return Running().Find(kUploadTitle); }
  Window FtpItem(int id) { return Ftp().Item(id); }

  void FillInLogin(const Login& login);
  // Presses Connect; true once the dialog shows that it is connected.
  bool Connect(const Login& login);
  // Whether the dialog has the look of the two states.
  bool LooksConnected();
  bool LooksDisconnected();
  // Whether the dialog is where nothing goes on.
  bool WaitUntilIdle(DWORD patience = kPatience);
  bool WaitUntilBusy();

  // Of the list's columns.
  std::vector<std::string> Headings();
  std::vector<Row> Rows();
  std::vector<std::string> Names();
  // Marks a row as a click on it would.
  bool SelectRow(const std::string& name);
};

#endif  // MOSAICON_TESTS_UI_PUBLISH_FIXTURE_H_
