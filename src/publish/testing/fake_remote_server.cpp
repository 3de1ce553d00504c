#include "publish/testing/fake_remote_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "kvtools/copy_bounded.h"
#include "net/error_codes.h"

namespace {

std::string ParentOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string Below(const std::string& folder, const std::string& name) {
  return folder == "/" ? "/" + name : folder + "/" + name;
}

FtpDirEntry MakeEntry(const std::string& name, bool isFolder, size_t size) {
  FtpDirEntry entry;
  CopyBounded(name, entry.name, sizeof entry.name);
  entry.size = static_cast<std::int32_t>(size);
  entry.year = 2014;
  entry.month = 3;
  entry.day = 7;
  entry.hour = 10;
  entry.minute = 5;
  entry.directory = isFolder ? 1 : 0;
  return entry;
}

std::optional<std::string> ReadRealFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

}  // namespace

FakeRemoteServer::FakeRemoteServer() : readLocalFile(ReadRealFile) {}

void FakeRemoteServer::AddFolder(const std::string& path) {
  if (path == "/" || Has(path)) return;
  AddFolder(ParentOf(path));
  m_nodes.push_back({path, true, ""});
}

void FakeRemoteServer::AddFile(const std::string& path, const std::string& content) {
  AddFolder(ParentOf(path));
  Remove(path);
  m_nodes.push_back({path, false, content});
}

void FakeRemoteServer::AddLink(const std::string& path, const std::string& target) {
  AddFolder(ParentOf(path));
  m_nodes.push_back({path, false, "", target});
}

void FakeRemoteServer::Delete(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) Remove(path);
}

bool FakeRemoteServer::Has(const std::string& path) const {
  return path == "/" || Find(path) != nullptr;
}

std::string FakeRemoteServer::Content(const std::string& path) const {
  const Node* node = Find(path);
  EXPECT_TRUE(node != nullptr && !node->isFolder) << path;
  return node != nullptr ? node->content : "";
}

std::vector<std::string> FakeRemoteServer::Paths() const {
  std::vector<std::string> paths;
  for (const Node& node : m_nodes) paths.push_back(node.isFolder ? node.path + "/" : node.path);
  return paths;
}

void FakeRemoteServer::Fail(const std::string& command, int code, int times, int after) {
  m_failures.push_back({command, code, times, after});
}

void FakeRemoteServer::AddLie(const std::string& folder, const std::string& name, bool isFolder) {
  m_lies.push_back({folder, MakeEntry(name, isFolder, 0)});
}

void FakeRemoteServer::Refill(const std::string& folder, const std::string& name, int times) {
  m_supplies[folder] = {name, times, 0};
}

int FakeRemoteServer::ChangeFolder(const std::string& name) {
  const int result = Begin("CWD", name);
  if (result != kNetSuccess) return result;
  const std::string path = Follow(Resolve(name));
  if (!IsFolder(path)) return kNetDenied;
  m_current = path;
  return kNetSuccess;
}

int FakeRemoteServer::GoToParent() {
  const int result = Begin("CDUP", "");
  if (result == kNetSuccess) m_current = ParentOf(m_current);
  return result;
}

int FakeRemoteServer::MakeFolder(const std::string& name) {
  const int result = Begin("MKD", name);
  if (result != kNetSuccess) return result;
  const std::string path = Resolve(name);
  if (Has(path) || !IsFolder(ParentOf(path))) return kNetDenied;
  m_nodes.push_back({path, true, ""});
  return kNetSuccess;
}

int FakeRemoteServer::RemoveFolder(const std::string& name) {
  const int result = Begin("RMD", name);
  if (result != kNetSuccess) return result;
  const std::string path = Resolve(name);
  const bool isEmpty = std::none_of(m_nodes.begin(), m_nodes.end(),
                                    [&path](const Node& node) { return ParentOf(node.path) == path; });
  if (path == "/" || !IsFolder(path) || !isEmpty) return kNetDenied;
  Remove(path);
  return kNetSuccess;
}

int FakeRemoteServer::RemoveFile(const std::string& name) {
  const int result = Begin("DELE", name);
  if (result != kNetSuccess) return result;
  const std::string path = Resolve(name);
  if (!Has(path) || IsFolder(path)) return kNetDenied;
  Remove(path);
  return kNetSuccess;
}

int FakeRemoteServer::CurrentFolder(std::string& path) {
  const int result = Begin("PWD", "");
  path = result == kNetSuccess ? m_current : "";
  return result;
}

int FakeRemoteServer::SendFile(const std::string& localPath, const std::string& name) {
  const int result = Begin("STOR", name);
  if (result != kNetSuccess) return result;
  const std::string path = Resolve(name);
  if (IsFolder(path) || !IsFolder(ParentOf(path))) return kNetStorFailed;
  const std::optional<std::string> content = readLocalFile(localPath);
  if (!content) return kNetSourceNotOpened;
  AddFile(path, *content);
  return kNetSuccess;
}

int FakeRemoteServer::List() {
  const auto supply = m_supplies.find(m_current);
  if (supply != m_supplies.end() && supply->second.times != 0) {
    Supply& more = supply->second;
    AddFile(Below(m_current, more.name + std::to_string(more.made++)));
    if (more.times > 0) --more.times;
  }
  const int result = Begin("LIST", "");
  if (result != kNetSuccess) return result;
  m_entries.clear();
  for (const Lie& lie : m_lies) {
    if (lie.folder == m_current) m_entries.push_back(lie.entry);
  }
  for (const Node& node : m_nodes) {
    if (ParentOf(node.path) != m_current) continue;
    const bool looksLikeFolder = node.isFolder || !node.target.empty();
    m_entries.push_back(MakeEntry(NameOf(node.path), looksLikeFolder, node.content.size()));
  }
  return kNetSuccess;
}

FtpDirEntry FakeRemoteServer::Entry(int index) {
  if (index < 0 || index >= EntryCount()) return FtpDirEntry();
  return m_entries[static_cast<size_t>(index)];
}

int FakeRemoteServer::ReportError(int code) {
  reportedErrors.push_back(code);
  return code;
}

int FakeRemoteServer::Begin(const std::string& verb, const std::string& name) {
  const std::string line = name.empty() ? verb : verb + " " + name;
  commands.push_back(line);
  if (onCommand) onCommand(line);
  if (m_commandsLeft == 0) return kNetNoResponse;
  if (m_commandsLeft > 0) --m_commandsLeft;
  return ScriptedResult(verb, name.empty() ? verb + " " + m_current : line);
}

int FakeRemoteServer::ScriptedResult(const std::string& verb, const std::string& line) {
  for (Failure& failure : m_failures) {
    if (failure.command != verb && failure.command != line) continue;
    if (failure.after > 0) {
      --failure.after;
    } else if (failure.times != 0) {
      if (failure.times > 0) --failure.times;
      return failure.code;
    }
  }
  return kNetSuccess;
}

std::string FakeRemoteServer::Resolve(const std::string& name) const {
  std::string path = name.rfind('/', 0) == 0 ? "/" : m_current;
  std::istringstream components(name);
  for (std::string component; std::getline(components, component, '/');) {
    if (component == "..") {
      path = ParentOf(path);
    } else if (!component.empty() && component != ".") {
      path = Below(path, component);
    }
  }
  return path;
}

const FakeRemoteServer::Node* FakeRemoteServer::Find(const std::string& path) const {
  const auto found =
      std::find_if(m_nodes.begin(), m_nodes.end(), [&path](const Node& node) { return node.path == path; });
  return found != m_nodes.end() ? &*found : nullptr;
}

bool FakeRemoteServer::IsFolder(const std::string& path) const {
  const Node* node = Find(path);
  return path == "/" || (node != nullptr && node->isFolder);
}

std::string FakeRemoteServer::Follow(const std::string& path) const {
  const Node* node = Find(path);
  return node != nullptr && !node->target.empty() ? node->target : path;
}

void FakeRemoteServer::Remove(const std::string& path) {
  m_nodes.erase(
      std::remove_if(m_nodes.begin(), m_nodes.end(), [&path](const Node& node) { return node.path == path; }),
      m_nodes.end());
}
