// One child process of the tool runner: started in a folder of its own, killed with all that it
// started. Win32.
#ifndef MOSAICON_JOB_CHILD_PROCESS_H_
#define MOSAICON_JOB_CHILD_PROCESS_H_

#include <windows.h>

#include <string>

#include "handles/unique_handle.h"

class ChildProcess {
 public:
  ChildProcess() = default;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  // Kills whatever still runs, then closes all handles.
  ~ChildProcess();

  // Starts application with commandLine (at most 15,999 characters, or it is refused). The current
  // directory is folder while the process is made and what it was before afterwards, so that a bare
  // application name is found in folder and the child works there.
  bool Start(const char* application, const std::string& commandLine, const std::string& folder,
             STARTUPINFOA& startup, bool inheritHandles);

  // Null when nothing was started.
  HANDLE Process() const { return m_process.get(); }

  // Ends the process with exit code 9, also one that has ended already, and closes its handles.
  // What it started itself ends with it.
  void Terminate();

 private:
  // The process waits for its thread to be resumed. Null when nothing was made.
  UniqueHandle CreateThere(const char* application, const std::string& commandLine, const std::string& folder,
                           STARTUPINFOA& startup, bool inheritHandles);

  UniqueHandle m_process;
  UniqueHandle m_tree;  // job object: closing it ends the whole process tree
};

#endif  // MOSAICON_JOB_CHILD_PROCESS_H_
