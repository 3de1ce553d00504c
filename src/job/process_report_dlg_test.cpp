#include "job/process_report_dlg.h"

#include <gtest/gtest.h>

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

}  // namespace
