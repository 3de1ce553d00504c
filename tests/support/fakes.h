// Stand-ins for what a job talks to. Each remembers what it was asked, in one common list where the
// order matters, so that a test can compare the whole course of a job.
#ifndef MOSAICON_TESTS_SUPPORT_FAKES_H_
#define MOSAICON_TESTS_SUPPORT_FAKES_H_

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "job/finishing_steps.h"
#include "job/job_host.h"
#include "job/process_environment.h"
#include "job/tool_runner.h"

using Events = std::vector<std::string>;

class FakeHost : public JobHost {
 public:
  explicit FakeHost(Events& events) : m_events(events) {}

  void ShowMessage(MessageIcon icon, const std::string& text) override {
    Note((icon == MessageIcon::kInformation ? "information: " : "warning: ") + text);
  }
  void WriteBackTargetUrl(const std::string& url) override { Note("url := " + url); }
  void WriteBackMapTitle(const std::string& title) override { Note("title := " + title); }
  void WriteBackTargetFolder(const std::string& folder) override { Note("folder := " + folder); }
  Answer AskYesNoCancel(const std::string& text) override {
    Note("ask: " + text);
    return answer;
  }
  void SetBusy(bool busy) override { Note(busy ? "busy" : "idle"); }
  void SetProgressLabel(const std::string& text) override { Note("label: " + text); }
  void SetProgressRange(int lower, int upper) override {
    Note("range: " + std::to_string(lower) + ".." + std::to_string(upper));
  }
  void SetProgressPosition(int percent) override { Note("position: " + std::to_string(percent)); }
  void NavigatePreview(const std::string& page) override { Note("preview: " + page); }
  void PumpMessages() override { Note("pump"); }
  void ShowReport(const JobReport& shown) override {
    Note("report");
    report = shown;
  }
  bool IsAborted() const override {
    Count("IsAborted");
    return aborted;
  }
  void SetAborted(bool flag) override {
    Count("SetAborted");
    aborted = flag;
  }
  bool IsClosed() const override { return closed; }

  Answer answer = Answer::kYes;
  bool aborted = false;
  mutable bool closed = false;
  JobReport report;
  // Runs after each event is noted: what a user does at that moment.
  std::function<void(const std::string& event)> onEvent;

  // Every call but IsClosed counts. The host closes itself in the one with this number, if not 0.
  mutable int calls = 0;
  int closingCall = 0;
  mutable size_t eventsAtClosing = 0;

 private:
  void Count(const std::string& call) const {
    EXPECT_FALSE(closed) << "the host is gone: " << call;
    if (++calls != closingCall) return;
    closed = true;
    eventsAtClosing = m_events.size();
  }
  void Note(const std::string& event) {
    m_events.push_back(event);
    Count(event);
    if (onEvent) onEvent(event);
  }
  Events& m_events;
};

class FakeSteps : public FinishingSteps {
 public:
  explicit FakeSteps(Events& events) : m_events(events) {}
  bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                    const std::string& subFolder) override {
    m_events.push_back("links " + kml + " " + baseUrl + " " + subFolder);
    if (onLinks) onLinks(kml);
    return unlinked.count(kml) == 0;
  }
  bool MakePreview(const std::string& orthophoto, const std::string& picture, std::string& reason) override {
    m_events.push_back("picture " + orthophoto + " -> " + picture);
    reason = pictureProblem.value_or("");
    return !pictureProblem;
  }
  bool IsPreview(const std::string& path) override { return previews.count(path) > 0; }
  bool WriteText(const std::string& path, const std::string& text) override {
    m_events.push_back("write " + path);
    if (unwritten.count(path) > 0) return false;
    texts[path] = text;
    return true;
  }

  std::set<std::string> previews;
  std::set<std::string> unlinked;
  std::set<std::string> unwritten;
  std::map<std::string, std::string> texts;  // by path
  std::optional<std::string> pictureProblem;
  std::function<void(const std::string& kml)> onLinks;  // what becomes of the file besides

 private:
  Events& m_events;
};

// Tools that end well at once, and make nothing but what a test has them make.
class FakeRunner : public ToolRunner {
 public:
  explicit FakeRunner(Events& events) : m_events(events) {}
  ToolOutcome Run(const ToolRun& run) override {
    m_events.push_back(NameOf(run.tool) + " " + run.program + run.arguments);
    runs.push_back(run);
    outcome = {0, run.tool == Tool::kTiler ? "RESULT OK" : "", "", false};
    if (onRun) onRun(run);
    return outcome;
  }
  // As it stands in the events.
  static std::string NameOf(Tool tool) {
    switch (tool) {
      case Tool::kTranslator:
        return "translate";
      case Tool::kWarper:
        return "warp";
      case Tool::kTiler:
        break;
    }
    return "tile";
  }

  // What the tool does, and the user meanwhile; it may change the outcome.
  std::function<void(const ToolRun& run)> onRun;
  ToolOutcome outcome;
  std::vector<ToolRun> runs;

 private:
  Events& m_events;
};

class FakeEnvironment : public ProcessEnvironment {
 public:
  std::optional<std::string> Get(const std::string& name) override {
    const auto found = values.find(name);
    return found != values.end() ? std::optional<std::string>(found->second) : std::nullopt;
  }
  bool Set(const std::string& name, const std::string& value) override {
    if (name == refused) return false;
    order.push_back(name);
    values[name] = value;
    return true;
  }
  std::map<std::string, std::string> values;
  std::vector<std::string> order;
  std::string refused;
};

#endif  // MOSAICON_TESTS_SUPPORT_FAKES_H_
