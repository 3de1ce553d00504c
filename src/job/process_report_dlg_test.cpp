#include "job/process_report_dlg.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "mfc/testing/ui_driver.h"
#include "resources/resource.h"

namespace {

class WatchedReport : public CProcessReportDlg {
 public:
  WatchedReport() : CProcessReportDlg("00:01:02", "- a.tif: OK\r\n", "Copy it", "To there", nullptr) {}
  BOOL OnInitDialog() override {
    const BOOL result = CProcessReportDlg::OnInitDialog();
    initialised = result;
    return result;
  }

  BOOL initialised = FALSE;
};

TEST(ProcessReport, ShowsItsTexts) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  WatchedReport report;
  UiDriver driver({[&] {
    EXPECT_EQ(report.GetWindowText(), "Process Completed");
    EXPECT_EQ(report.GetDlgItemText(IDC_WORK_TIME), "Total work time: 00:01:02");
    EXPECT_EQ(report.GetDlgItemText(IDC_LOG), "- a.tif: OK\r\n");
    EXPECT_EQ(report.GetDlgItemText(IDC_COPY_HINT), "Copy it");
    EXPECT_EQ(report.GetDlgItemText(IDC_WEB_HINT), "To there");
    EXPECT_EQ(report.GetDlgItemText(IDC_VIEW_HINT), "How to view this dataset?");
    for (const int hidden : {IDC_VIEW_HINT, IDC_COPY_HINT, IDC_WEB_HINT}) {
      EXPECT_FALSE(IsWindowVisible(report.GetDlgItem(hidden))) << hidden;
    }
    const LONG_PTR style = GetWindowLongPtrA(report.GetDlgItem(IDC_LOG), GWL_STYLE);
    EXPECT_EQ(style & (ES_MULTILINE | ES_READONLY), ES_MULTILINE | ES_READONLY);
    return PostCommand(report.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(report.DoModal(), IDOK);
}

// Return closes it, and no text is selected.
TEST(ProcessReport, BeginsAtItsButton) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  WatchedReport report;
  UiDriver driver({[&] {
    EXPECT_EQ(report.initialised, TRUE);
    EXPECT_EQ(GetFocus(), report.GetDlgItem(IDOK));
    return PostKey(GetFocus(), VK_RETURN);
  }});
  EXPECT_EQ(report.DoModal(), IDOK);
}

// A report with problems, looked at by check before it is closed.
void WorkWithProblems(const std::string& problems, const std::function<void(WatchedReport&)>& check) {
  WatchedReport report;
  report.SetProblems("2 of 3 maps are missing or incomplete:", problems);
  UiDriver driver({[&] {
    check(report);
    return PostCommand(report.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(report.DoModal(), IDOK);
}

RECT PlaceOf(const CWnd& dialog, int id) {
  RECT rect;
  GetWindowRect(dialog.GetDlgItem(id), &rect);
  MapWindowPoints(nullptr, dialog.GetSafeHwnd(), reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

int ClientHeight(const CWnd& dialog) {
  RECT rect;
  GetClientRect(dialog.GetSafeHwnd(), &rect);
  return rect.bottom;
}

TEST(ProcessReport, ShowsNothingOfProblemsWhenThereAreNone) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  WatchedReport report;
  report.SetProblems("", "");
  UiDriver driver({[&] {
    EXPECT_FALSE(IsWindowVisible(report.GetDlgItem(IDC_PROBLEM_COUNT)));
    EXPECT_FALSE(IsWindowVisible(report.GetDlgItem(IDC_PROBLEMS)));
    RECT size = {0, 0, 360, 190};
    MapDialogRect(report.GetSafeHwnd(), &size);
    EXPECT_EQ(ClientHeight(report), size.bottom);
    RECT button = {303, 169, 353, 183};
    MapDialogRect(report.GetSafeHwnd(), &button);
    EXPECT_EQ(PlaceOf(report, IDOK).top, button.top);
    return PostCommand(report.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(report.DoModal(), IDOK);
}

TEST(ProcessReport, GrowsForWhatIsMissing) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  WorkWithProblems("D:\\a.tif: no memory\r\nD:\\b.tif: no doc.kml\r\n", [](WatchedReport& report) {
    EXPECT_EQ(report.GetDlgItemText(IDC_PROBLEM_COUNT), "2 of 3 maps are missing or incomplete:");
    EXPECT_EQ(report.GetDlgItemText(IDC_PROBLEMS), "D:\\a.tif: no memory\r\nD:\\b.tif: no doc.kml\r\n");
    EXPECT_EQ(report.GetDlgItemText(IDC_LOG), "- a.tif: OK\r\n") << "as ever";
    // One below the other, and all of it within the dialog.
    int last = 0;
    for (const int id : {IDC_WORK_TIME, IDC_LOG, IDC_PROBLEM_COUNT, IDC_PROBLEMS, IDOK}) {
      EXPECT_TRUE(IsWindowVisible(report.GetDlgItem(id))) << id;
      const RECT place = PlaceOf(report, id);
      EXPECT_GT(place.top, last) << id;
      last = place.bottom;
    }
    EXPECT_LT(last, ClientHeight(report));
    const LONG_PTR style = GetWindowLongPtrA(report.GetDlgItem(IDC_PROBLEMS), GWL_STYLE);
    EXPECT_EQ(style & (ES_MULTILINE | ES_READONLY | WS_VSCROLL | WS_TABSTOP),
              ES_MULTILINE | ES_READONLY | WS_VSCROLL | WS_TABSTOP);
    EXPECT_EQ(style & WS_HSCROLL, 0) << "long lines are wrapped";
    // The focus is at the button; Tab goes down from the log.
    EXPECT_EQ(GetFocus(), report.GetDlgItem(IDOK));
    const HWND log = report.GetDlgItem(IDC_LOG);
    EXPECT_EQ(GetNextDlgTabItem(report.GetSafeHwnd(), report.GetDlgItem(IDOK), FALSE), log);
    EXPECT_EQ(GetNextDlgTabItem(report.GetSafeHwnd(), log, FALSE), report.GetDlgItem(IDC_PROBLEMS));
  });
}

TEST(ProcessReport, StaysOnTheScreen) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  WorkWithProblems("D:\\a.tif: no memory\r\n", [](WatchedReport& report) {
    RECT place;
    GetWindowRect(report.GetSafeHwnd(), &place);
    RECT work;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_GE(place.top, work.top);
    EXPECT_LE(place.bottom, work.bottom);
    EXPECT_NEAR((place.top + place.bottom) / 2, (work.top + work.bottom) / 2, 2) << "in its middle";
  });
}

TEST(ProcessReport, HoldsTheProblemsOfAThousandMaps) {
  ASSERT_NO_FATAL_FAILURE(ExpectScreen());
  std::string problems;
  for (int i = 0; i < 1000; ++i) problems += "D:\\photos\\" + std::to_string(i) + ".tif: no memory\r\n";
  WorkWithProblems(problems, [&](WatchedReport& report) {
    EXPECT_EQ(report.GetDlgItemText(IDC_PROBLEMS).size(), problems.size());
    EXPECT_GE(SendDlgItemMessageA(report.GetSafeHwnd(), IDC_PROBLEMS, EM_GETLINECOUNT, 0, 0), 1000);
  });
}

}  // namespace
