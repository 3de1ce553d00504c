// The dialogs of dialogs.rc. For tests, and for the resource compiler.
#ifndef MOSAICON_MFC_TESTING_DIALOGS_H_
#define MOSAICON_MFC_TESTING_DIALOGS_H_

#define IDD_TEST_PLAIN 100
#define IDD_TEST_CONTROLS 101
#define IDD_TEST_MISSING 199  // there is none

#define IDC_TEST_EDIT 1000
#define IDC_TEST_COLOR 1001
#define IDC_TEST_LINK 1002
#define IDC_TEST_CHECK 1003
#define IDC_TEST_LABELLED_COLOR 1004

#endif  // MOSAICON_MFC_TESTING_DIALOGS_H_
