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

 protected:
  BOOL OnInitDialog() override;

 private:
  const std::string m_strWorkTime;
  const std::string m_strLog;
  const std::string m_strCopyHint;
  const std::string m_strWebHint;
};

#endif  // MOSAICON_JOB_PROCESS_REPORT_DLG_H_
