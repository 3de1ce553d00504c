// What was done: shown at the end of every job.
#ifndef MOSAICON_JOB_PROCESS_REPORT_DLG_H_
#define MOSAICON_JOB_PROCESS_REPORT_DLG_H_

#include <string>

#include "mfc/dialog.h"

class CProcessReportDlg : public CDialog {
 public:
  // strLog has lines that end in "\r\n".
  CProcessReportDlg(std::string strWorkTime, std::string strLog, std::string strCopyHint,
                    std::string strWebHint, CWnd* parent);

  // Before it is shown: what is missing, as a heading and as lines that end in "\r\n". They stand below the
  // log, for which the dialog grows. Without heading there is neither.
  void SetProblems(std::string strCount, std::string strProblems);

 protected:
  BOOL OnInitDialog() override;

 private:
  void ShowProblems();
  void GrowBy(int height);

  const std::string m_strWorkTime;
  const std::string m_strLog;
  const std::string m_strCopyHint;
  const std::string m_strWebHint;
  std::string m_strProblemCount;
  std::string m_strProblems;
};

#endif  // MOSAICON_JOB_PROCESS_REPORT_DLG_H_
