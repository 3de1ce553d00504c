// What a job needs from the program that runs it: the window, the batch program or a test. All calls
// come from the thread that runs the job. Any call that shows something or pumps may run other
// handlers of the host before it returns, and even close it.
#ifndef MOSAICON_JOB_JOB_HOST_H_
#define MOSAICON_JOB_JOB_HOST_H_

#include <string>
#include <vector>

#include "job/map_outcome.h"

enum class MessageIcon { kInformation, kWarning };
enum class Answer { kYes, kNo, kCancel };

// The texts of the completion report, and what its log does not tell.
struct JobReport {
  std::string elapsed;           // KVT_GetElapsedTime
  std::string log;               // lines that end in "\r\n", or "Aborted by user"
  std::string copyHint;          // "Copy '...' folder and its content"
  std::string webHint;           // "To '...' web space"
  std::vector<MapOutcome> maps;  // one for each orthophoto
};

// Shows text with an OK button and returns when it was read.
class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void ShowMessage(MessageIcon icon, const std::string& text) = 0;
};

// The fields of the form that a job writes back in normalised form.
class JobForm : public MessageSink {
 public:
  virtual void WriteBackTargetUrl(const std::string& url) = 0;
  virtual void WriteBackMapTitle(const std::string& title) = 0;
  virtual void WriteBackTargetFolder(const std::string& folder) = 0;
};

class JobHost : public JobForm {
 public:
  // Asks a question with Yes, No and Cancel and no icon.
  virtual Answer AskYesNoCancel(const std::string& text) = 0;

  // Locks the form while a job runs, and unlocks it.
  virtual void SetBusy(bool busy) = 0;
  virtual void SetProgressLabel(const std::string& text) = 0;
  // Sets the range of the progress bar, in percent, and its position.
  virtual void SetProgressRange(int lower, int upper) = 0;
  virtual void SetProgressPosition(int percent) = 0;
  // Shows a page, given by its file path, beside the form.
  virtual void NavigatePreview(const std::string& page) = 0;
  // Dispatches what is pending and returns.
  virtual void PumpMessages() = 0;
  // Returns when the user closed the report.
  virtual void ShowReport(const JobReport& report) = 0;

  // The abort flag: set by the host when the user asks for it, or by the job itself.
  virtual bool IsAborted() const = 0;
  virtual void SetAborted(bool aborted) = 0;
  // True once the host is being taken down: the job then ends without another call to it.
  virtual bool IsClosed() const = 0;
};

#endif  // MOSAICON_JOB_JOB_HOST_H_
