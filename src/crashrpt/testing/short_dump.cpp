// Test DLL: takes the place of the system's one that writes minidumps, which needs seconds under Wine. It
// writes what the tests look at, read from the crashed process as the real one does it: the threads, and the
// exception.
#include <windows.h>

#include <dbghelp.h>
#include <tlhelp32.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

template <typename Value>
void Append(std::string& bytes, const Value& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string ThreadList(DWORD processId) {
  std::string threads;
  std::uint32_t count = 0;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL found = Thread32First(snapshot, &entry); found; found = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID != processId) continue;
    MINIDUMP_THREAD thread = {};
    thread.ThreadId = entry.th32ThreadID;
    Append(threads, thread);
    ++count;
  }
  CloseHandle(snapshot);
  std::string stream;
  Append(stream, count);
  return stream + threads;
}

// False when the pointers lead nowhere in that process.
bool ReadException(HANDLE process, const MINIDUMP_EXCEPTION_INFORMATION& given, std::string& stream) {
  EXCEPTION_POINTERS pointers = {};
  EXCEPTION_RECORD record = {};
  if (!ReadProcessMemory(process, given.ExceptionPointers, &pointers, sizeof pointers, nullptr) ||
      !ReadProcessMemory(process, pointers.ExceptionRecord, &record, sizeof record, nullptr)) {
    return false;
  }
  MINIDUMP_EXCEPTION_STREAM exception = {};
  exception.ThreadId = given.ThreadId;
  exception.ExceptionRecord.ExceptionCode = record.ExceptionCode;
  exception.ExceptionRecord.ExceptionAddress = reinterpret_cast<std::uintptr_t>(record.ExceptionAddress);
  Append(stream, exception);
  return true;
}

void AppendEntry(std::string& bytes, ULONG32 type, size_t size, size_t place) {
  MINIDUMP_DIRECTORY entry = {};
  entry.StreamType = type;
  entry.Location.DataSize = static_cast<ULONG32>(size);
  entry.Location.Rva = static_cast<RVA>(place);
  Append(bytes, entry);
}

}  // namespace

extern "C" __declspec(dllexport) BOOL WINAPI
    MiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, MINIDUMP_TYPE,
                      PMINIDUMP_EXCEPTION_INFORMATION given, PMINIDUMP_USER_STREAM_INFORMATION,
                      PMINIDUMP_CALLBACK_INFORMATION) {
  std::string exception;
  if (!given->ClientPointers || !ReadException(process, *given, exception)) return FALSE;
  const std::string threads = ThreadList(processId);
  constexpr ULONG32 kStreams = 2;
  constexpr size_t kBegin = sizeof(MINIDUMP_HEADER) + kStreams * sizeof(MINIDUMP_DIRECTORY);
  MINIDUMP_HEADER header = {};
  std::memcpy(&header.Signature, "MDMP", sizeof header.Signature);
  header.Version = MINIDUMP_VERSION;
  header.NumberOfStreams = kStreams;
  header.StreamDirectoryRva = sizeof header;
  std::string dump;
  Append(dump, header);
  AppendEntry(dump, ThreadListStream, threads.size(), kBegin);
  AppendEntry(dump, ExceptionStream, exception.size(), kBegin + threads.size());
  dump += threads + exception;
  DWORD written = 0;
  return WriteFile(file, dump.data(), static_cast<DWORD>(dump.size()), &written, nullptr) &&
         written == dump.size();
}
