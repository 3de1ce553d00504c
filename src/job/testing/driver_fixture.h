// A driver between stand-ins, with all its tools in place. For tests.
#ifndef MOSAICON_JOB_TESTING_DRIVER_FIXTURE_H_
#define MOSAICON_JOB_TESTING_DRIVER_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/testing/fake_file_system.h"
#include "job/batch_driver.h"
#include "kvtools/kvtools.h"
#include "support/fakes.h"

inline constexpr char kTools[] = "C:\\App\\gdal2tiles\\";
inline constexpr char kQuestion[] = "ask: Folders are not empty. All content will be overwritten.\nContinue?";

inline CTifData MakeData(const std::string& name, const std::string& source = "EPSG:32632",
                         const std::string& target = "EPSG:32632") {
  CTifData data;
  data.m_strFileName = "D:\\in\\" + name + ".tif";
  data.m_vCorners = {
      {0, 0, 9, 45, 1, 2}, {0, 20, 9, 44, 3, 4}, {10, 0, 10, 45, 5, 6}, {10, 20, 10, 44, 7, 8}};
  data.m_strSourceEPSG = source;
  data.m_strTargetEPSG = target;
  return data;
}

inline std::string TileCall(const std::string& epsg, const std::string& title, const std::string& url,
                            const std::string& key, const std::string& input, const std::string& output) {
  return std::string("tile ") + kTools + "python.exe \"" + kTools + "gdal2tiles.py\" -a 0 -s " + epsg +
         " -p mercator " + title + "  -k -u " + url + " " + key + " \"" + input + "\" \"" + output + "\"";
}

// Notes what is looked for, too.
class SearchedFiles : public FakeFileSystem {
 public:
  using FakeFileSystem::FakeFileSystem;
  bool Find(const std::string& pattern, std::vector<FoundFile>& found) override {
    patterns.push_back(pattern);
    return FakeFileSystem::Find(pattern, found);
  }

  std::vector<std::string> patterns;
};

class Driver : public testing::Test {
 protected:
  void SetUp() override {
    KVT_SetProfileProduct("Mosaicon Test");
    for (const char* tool : {"gdal2tiles.py", "gdal_translate.exe", "gdalwarp.exe", "python.exe"}) {
      m_files.Put(std::string(kTools) + tool);
    }
    m_files.PutFolder("D:\\out");
    m_settings.inputPath = "D:\\in\\a.tif";
    m_settings.mapTitle = "title";
    m_settings.targetFolder = "D:\\out\\maps";
    m_runner.onRun = [this](const ToolRun& run) {
      if (run.tool == Tool::kTiler) Make(run);
    };
  }

  // What a tool that succeeds does.
  void Make(const ToolRun& run) { m_files.Put(ProductOf(run), "made of " + run.input); }

  JobResult Start(const std::vector<CTifData>& orthophotos) {
    m_runner.runs.clear();
    return m_driver.StartJob(m_settings, orthophotos);
  }

  // Makes a folder look as if an earlier job had written into it.
  void Fill(const std::string& folder) { m_files.Put(folder + "\\older.txt"); }

  // As before the first job, but for what lies beside the orthophotos.
  void Clear() {
    m_events.clear();
    m_files.Remove("D:\\out\\maps");
  }

  // "(none)" where there is no such file.
  std::string TextOf(const std::string& path) { return m_files.Read(path, 1 << 24).value_or("(none)"); }

  // The events that are no part of what a test is about.
  Events Without(const std::vector<std::string>& prefixes) const {
    Events kept;
    for (const std::string& event : m_events) {
      bool dropped = false;
      for (const std::string& prefix : prefixes) dropped = dropped || event.rfind(prefix, 0) == 0;
      if (!dropped) kept.push_back(event);
    }
    return kept;
  }

  size_t CountEvents(const std::string& prefix) const { return m_events.size() - Without({prefix}).size(); }

  Events m_events;
  FakeHost m_host{m_events};
  SearchedFiles m_files{&m_events};
  FakeSteps m_steps{m_events};
  FakeRunner m_runner{m_events};
  FakeEnvironment m_environment;
  JobSettings m_settings;
  BatchDriver m_driver{m_host, m_runner, m_files, m_steps, m_environment, "C:\\App\\Mosaicon.exe"};
};

#endif  // MOSAICON_JOB_TESTING_DRIVER_FIXTURE_H_
