#include "ui/publish_fixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

// After windows.h.
#include <commctrl.h>

namespace {

constexpr int kTextSize = 512;

// Memory in the process of a window, for messages that carry a pointer.
class RemoteMemory {
 public:
  RemoteMemory(HANDLE process, size_t size)
      : m_hProcess(process),
        m_pMemory(VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)) {}
  ~RemoteMemory() { VirtualFreeEx(m_hProcess, m_pMemory, 0, MEM_RELEASE); }
  RemoteMemory(const RemoteMemory&) = delete;
  RemoteMemory& operator=(const RemoteMemory&) = delete;

  char* Address() const { return static_cast<char*>(m_pMemory); }
  void Write(const void* data, size_t size) const {
    WriteProcessMemory(m_hProcess, m_pMemory, data, size, nullptr);
  }
  void Read(size_t offset, void* data, size_t size) const {
    ReadProcessMemory(m_hProcess, Address() + offset, data, size, nullptr);
  }

 private:
  HANDLE m_hProcess;
  void* m_pMemory;
};

// The text that a list view fills into item when it gets message.
template <class Item>
std::string AskForText(HANDLE process, const Window& list, UINT message, int index, Item item) {
  const RemoteMemory memory(process, sizeof item + kTextSize);
  item.pszText = memory.Address() + sizeof item;
  item.cchTextMax = kTextSize;
  memory.Write(&item, sizeof item);
  char text[kTextSize] = "";
  if (list.Send(message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(memory.Address())) == 0)
    return "";
  memory.Read(sizeof item, text, kTextSize - 1);
  return text;
}

std::string RowText(HANDLE process, const Window& list, int row, int column) {
  LVITEMA item = {};
  item.iSubItem = column;
  return AskForText(process, list, LVM_GETITEMTEXTA, row, item);
}

std::string Heading(HANDLE process, const Window& list, int column) {
  LVCOLUMNA item = {};
  item.mask = LVCF_TEXT;
  return AskForText(process, list, LVM_GETCOLUMNA, column, item);
}

std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path << " cannot be read";
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string TextFromEnvironment(const char* variable) {
  char value[MAX_PATH] = "";
  EXPECT_NE(GetEnvironmentVariableA(variable, value, sizeof value), 0U) << variable << " is not set";
  return value;
}

Login ServerLogin(bool firewallMode) {
  return {.host = TextFromEnvironment("MOSAICON_FTP_HOST") + ":" + TextFromEnvironment("MOSAICON_FTP_PORT"),
          .user = TextFromEnvironment("MOSAICON_FTP_USER"),
          .password = TextFromEnvironment("MOSAICON_FTP_PASSWORD"),
          .firewallMode = firewallMode};
}

std::string Remote(const std::string& name) {
  return PathFromEnvironment("MOSAICON_FTP_ROOT") + (name.empty() ? "" : "\\" + name);
}

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.name << " of " << row.date;
}

Tree ReadTree(const std::string& folder) {
  Tree tree;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().lexically_relative(folder).string();
    if (entry.is_directory()) {
      tree[name + "\\"] = "";
    } else {
      tree[name] = ReadBytes(entry.path());
    }
  }
  return tree;
}

Tree AsUploaded(const Tree& tree) {
  Tree uploaded;
  for (const auto& [name, bytes] : tree) {
    const size_t file = name.rfind('\\') + 1;  // 0 for a file in the folder itself
    std::string folders = name.substr(0, file);
    std::replace(folders.begin(), folders.end(), ' ', '_');
    uploaded[folders + name.substr(file)] = bytes;
  }
  return uploaded;
}

std::vector<std::string> Differences(const Tree& tree, const Tree& other) {
  std::vector<std::string> differences;
  for (const auto& [name, bytes] : tree) {
    const auto found = other.find(name);
    if (found == other.end()) {
      differences.push_back(name + " is only in the first");
    } else if (found->second != bytes) {
      differences.push_back(name + " differs: " + std::to_string(bytes.size()) + " and " +
                            std::to_string(found->second.size()) + " bytes");
    }
  }
  for (const auto& [name, bytes] : other) {
    if (!tree.contains(name)) differences.push_back(name + " is only in the second");
  }
  return differences;
}

void WriteFileIn(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(file.flush()) << path << " cannot be written";
}

bool PathExists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void PublishTest::TearDown() {
  // A dialog that a test has left open would stand in the way of the next one.
  if (Ftp() && !CloseUpload()) StopProgram();
  MosaiconTest::TearDown();
}

bool PublishTest::OpenUpload(const std::string& localFolder, const std::string& webUrl) {
  if (!Item(IDC_WEB_OUTPUT).Check(!webUrl.empty())) return false;
  Item(IDC_TARGET_URL).SetText(webUrl);
  Item(IDC_TARGET_FOLDER).SetText(localFolder);
  Item(IDC_UPLOAD).Click();
  return Running().WaitFor(kUploadTitle).Item(IDOK).WaitUntilEnabled();
}

bool PublishTest::CloseUpload() {
  const Window dialog = Ftp();
  dialog.Item(IDOK).Click();
  return dialog.WaitUntilGone() && Main().WaitUntilEnabled();
}

void PublishTest::FillInLogin(const Login& login) {
  FtpItem(IDC_FTP_HOST).SetText(login.host);
  FtpItem(IDC_FTP_REMOTE_FOLDER).SetText(login.folder);
  FtpItem(IDC_FTP_USER_NAME).SetText(login.user);
  FtpItem(IDC_FTP_PASSWORD).SetText(login.password);
  EXPECT_TRUE(FtpItem(IDC_FTP_FIREWALL_MODE).Check(login.firewallMode));
  EXPECT_TRUE(FtpItem(IDC_FTP_ASCII).Check(login.ascii));
}

bool PublishTest::Connect(const Login& login) {
  FillInLogin(login);
  FtpItem(IDC_FTP_CONNECT).Click();
  return WaitUntil([this] { return LooksConnected(); });
}

bool PublishTest::LooksConnected() {
  for (const int id : {IDC_FTP_UPLOAD, IDC_FTP_DISCONNECT, IDC_FTP_REMOVE, IDC_FTP_REFRESH,
                       IDC_FTP_UPDATE_INDEX, IDC_FTP_CHECK, IDC_FTP_LIST}) {
    if (!FtpItem(id).IsEnabled()) return false;
  }
  for (const int id : {IDC_FTP_HOST, IDC_FTP_REMOTE_FOLDER, IDC_FTP_USER_NAME, IDC_FTP_PASSWORD,
                       IDC_FTP_FIREWALL_MODE, IDC_FTP_BYTE, IDC_FTP_ASCII, IDC_FTP_CONNECT}) {
    if (FtpItem(id).IsEnabled()) return false;
  }
  return FtpItem(IDOK).IsEnabled() && !FtpItem(IDC_FTP_ABORT).IsEnabled();
}

bool PublishTest::LooksDisconnected() {
  for (const int id : {IDC_FTP_HOST, IDC_FTP_REMOTE_FOLDER, IDC_FTP_USER_NAME, IDC_FTP_PASSWORD,
                       IDC_FTP_FIREWALL_MODE, IDC_FTP_BYTE, IDC_FTP_ASCII, IDC_FTP_CONNECT, IDOK}) {
    if (!FtpItem(id).IsEnabled()) return false;
  }
  for (const int id :
       {IDC_FTP_UPLOAD, IDC_FTP_DISCONNECT, IDC_FTP_REMOVE, IDC_FTP_REFRESH, IDC_FTP_LIST, IDC_FTP_ABORT}) {
    if (FtpItem(id).IsEnabled()) return false;
  }
  return true;
}

bool PublishTest::WaitUntilIdle(DWORD patience) {
  return WaitUntil([this] { return FtpItem(IDOK).IsEnabled() && !FtpItem(IDC_FTP_ABORT).IsEnabled(); },
                   patience);
}

bool PublishTest::WaitUntilBusy() {
  return FtpItem(IDC_FTP_ABORT).WaitUntilEnabled();
}

std::vector<std::string> PublishTest::Headings() {
  std::vector<std::string> headings;
  for (int i = 0; i < 2; ++i) headings.push_back(Heading(Running().Process(), FtpItem(IDC_FTP_LIST), i));
  return headings;
}

std::vector<Row> PublishTest::Rows() {
  const Window list = FtpItem(IDC_FTP_LIST);
  std::vector<Row> rows;
  const auto count = static_cast<int>(list.Send(LVM_GETITEMCOUNT));
  for (int i = 0; i < count; ++i) {
    rows.push_back({RowText(Running().Process(), list, i, 0), RowText(Running().Process(), list, i, 1)});
  }
  return rows;
}

std::vector<std::string> PublishTest::Names() {
  std::vector<std::string> names;
  for (const Row& row : Rows()) names.push_back(row.name);
  return names;
}

bool PublishTest::SelectRow(const std::string& name) {
  const std::vector<std::string> names = Names();
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return false;
  const Window list = FtpItem(IDC_FTP_LIST);
  list.Send(LVM_SETSELECTIONMARK, 0, found - names.begin());
  return list.Send(LVM_GETSELECTIONMARK) == found - names.begin();
}
