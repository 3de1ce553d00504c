// The FTP client on a lead: does what the lines on its input say, and answers each with one line, so
// that a test on the other side of Wine can play through sessions with real servers. Test equipment.
//
//   command TAB argument TAB ...   ->   result TAB milliseconds TAB detail TAB ...
//
// The result is the client's error code; "?" means that there is no such command. Paths of local files
// are Windows paths.
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "net/error_codes.h"
#include "net/ftp_client.h"

namespace {

using Words = std::vector<std::string>;

// Gives up a transfer after a number of bytes, in the way that a test asks for, or takes its time with it.
class Client : public CUT_FTPClient {
 public:
  int OnReceiveProgress(long bytes) override { return GoesOn(bytes); }
  int OnSendProgress(long bytes) override { return GoesOn(bytes); }
  int IsAborted() override { return m_isAborted ? 1 : 0; }

  void AbortAt(long bytes, bool byHook) {
    m_limit = bytes;
    m_byHook = byHook;
    m_isAborted = false;
  }
  void TakeForEachChunk(std::chrono::milliseconds pace) { m_pace = pace; }

 private:
  int GoesOn(long bytes) {
    std::this_thread::sleep_for(m_pace);
    if (m_limit == 0 || bytes < m_limit) return 1;
    if (m_byHook) return 0;
    m_isAborted = true;
    return 1;
  }

  long m_limit = 0;
  bool m_byHook = true;
  bool m_isAborted = false;
  std::chrono::milliseconds m_pace{0};
};

// Has nothing to do, but is asked.
class Listener : public WaitListener {
 public:
  bool OnWait() override { return true; }
};

class Driver {
 public:
  // False at the end.
  bool Answer(std::istream& input, std::ostream& output) {
    std::string line;
    if (!std::getline(input, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    Words words;
    std::istringstream rest(line);
    for (std::string word; std::getline(rest, word, '\t');) words.push_back(word);
    words.resize(6);
    m_details.clear();
    const auto start = std::chrono::steady_clock::now();
    const auto command = m_commands.find(words[0]);
    const std::string result =
        command == m_commands.end() ? "?" : std::to_string((this->*command->second)(words));
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
    output << result << '\t' << std::llround(passed.count());
    for (const std::string& detail : m_details) output << '\t' << detail;
    output << std::endl;
    return true;
  }

 private:
  using Command = int (Driver::*)(const Words&);

  static int Number(const std::string& word) { return std::atoi(word.c_str()); }

  int Connect(const Words& words) {
    m_client.SetControlPort(Number(words[2]));
    return m_client.FTPConnect(words[1].c_str(), words[3].c_str(), words[4].c_str(), words[5].c_str());
  }
  int Close(const Words&) { return m_client.FTPClose(); }
  int Pace(const Words& words) {
    m_client.TakeForEachChunk(std::chrono::milliseconds(Number(words[1])));
    return kNetSuccess;
  }
  int Passive(const Words& words) {
    m_client.SetPassive(Number(words[1]) != 0);
    return kNetSuccess;
  }
  int Listen(const Words& words) {
    m_client.SetWaitListener(Number(words[1]) != 0 ? &m_listener : nullptr);
    return kNetSuccess;
  }
  int Timeouts(const Words& words) {
    m_client.SetDataTimeouts(Number(words[1]), Number(words[2]));
    return kNetSuccess;
  }
  int AbortHook(const Words& words) {
    m_client.AbortAt(Number(words[1]), true);
    return kNetSuccess;
  }
  int AbortFlag(const Words& words) {
    m_client.AbortAt(Number(words[1]), false);
    return kNetSuccess;
  }

  int Type(const Words& words) { return m_client.SetTransferType(Number(words[1])); }
  int NoOp(const Words&) { return m_client.NoOp(); }
  int MakeFolder(const Words& words) { return m_client.MkDir(words[1].c_str()); }
  int ChangeFolder(const Words& words) { return m_client.ChDir(words[1].c_str()); }
  int FolderUp(const Words&) { return m_client.CdUp(); }
  int RemoveFolder(const Words& words) { return m_client.RmDir(words[1].c_str()); }
  int Delete(const Words& words) { return m_client.DeleteFile(words[1].c_str()); }
  int Rename(const Words& words) { return m_client.RenameFile(words[1].c_str(), words[2].c_str()); }
  int Quote(const Words& words) { return m_client.Quote(words[1].c_str()); }
  int CurrentFolder(const Words&) {
    char folder[300];
    const int code = m_client.GetCurDir(folder, sizeof folder);
    m_details.emplace_back(folder);
    return code;
  }
  int Replies(const Words&) {
    for (int i = 0; i < m_client.GetReplyLineCount(); ++i) {
      m_details.emplace_back(m_client.GetReplyLineText(i));
    }
    return kNetSuccess;
  }
  int List(const Words&) {
    const int code = m_client.List();
    for (int i = 0; i < m_client.GetDirEntryCount(); ++i) {
      FtpDirEntry entry;
      m_client.GetDirEntry(i, entry);
      std::ostringstream text;
      text << entry.directory << ' ' << entry.size << ' ' << entry.year << '-' << entry.month << '-'
           << entry.day << ' ' << entry.name;
      m_details.push_back(text.str());
    }
    return code;
  }

  int Send(const Words& words) { return m_client.SendFileByName(words[1].c_str(), words[2].c_str()); }
  int Receive(const Words& words) { return m_client.ReceiveFileByName(words[1].c_str(), words[2].c_str()); }
  int Resume(const Words& words) {
    return m_client.ResumeReceiveFileByName(words[1].c_str(), words[2].c_str());
  }
  // Every file of a folder, into the current one of the server, until one fails.
  int SendFolder(const Words& words) {
    for (const auto& file : std::filesystem::directory_iterator(words[1])) {
      const int code =
          m_client.SendFileByName(file.path().string().c_str(), file.path().filename().string().c_str());
      if (code != kNetSuccess) return code;
    }
    return kNetSuccess;
  }
  // What the current folder of the server lists, into a folder here.
  int ReceiveFolder(const Words& words) {
    if (const int code = m_client.List()) return code;
    for (int i = 0; i < m_client.GetDirEntryCount(); ++i) {
      FtpDirEntry entry;
      m_client.GetDirEntry(i, entry);
      const int code = m_client.ReceiveFileByName(entry.name, (words[1] + '\\' + entry.name).c_str());
      if (code != kNetSuccess) return code;
    }
    return kNetSuccess;
  }

  Listener m_listener;
  Client m_client;
  Words m_details;
  const std::map<std::string, Command> m_commands = {
      {"abort-flag", &Driver::AbortFlag},
      {"abort-hook", &Driver::AbortHook},
      {"cdup", &Driver::FolderUp},
      {"chdir", &Driver::ChangeFolder},
      {"close", &Driver::Close},
      {"connect", &Driver::Connect},
      {"delete", &Driver::Delete},
      {"list", &Driver::List},
      {"listen", &Driver::Listen},
      {"mkdir", &Driver::MakeFolder},
      {"noop", &Driver::NoOp},
      {"pace", &Driver::Pace},
      {"passive", &Driver::Passive},
      {"pwd", &Driver::CurrentFolder},
      {"quote", &Driver::Quote},
      {"receive", &Driver::Receive},
      {"receive-folder", &Driver::ReceiveFolder},
      {"rename", &Driver::Rename},
      {"replies", &Driver::Replies},
      {"resume", &Driver::Resume},
      {"rmdir", &Driver::RemoveFolder},
      {"send", &Driver::Send},
      {"send-folder", &Driver::SendFolder},
      {"timeouts", &Driver::Timeouts},
      {"type", &Driver::Type},
  };
};

}  // namespace

int main() {
  Driver driver;
  while (driver.Answer(std::cin, std::cout)) {
  }
  return 0;
}
