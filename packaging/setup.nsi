; The setup program. makensis gets, as definitions:
;   VERSION, VERSION4 (four numbers), SIZE (kilobytes), MAKER, WEB, STAGE (folder with what is installed),
;   FILES (an include file that removes just that), CHECKS (one that goes to Taken when any of it is there),
;   ICON, OUTPUT, SIGNER (optional: a command that signs the file which is named behind it)
;
; Without a question: /S, with /D=FOLDER as the last argument. Besides: /ALLUSERS, /DESKTOP (icon),
; /EXPLORER (menu entry for .tif files). Exit codes: 0 done, 1 cancelled, 2 something failed, 3 Mosaicon is
; running, 4 it is a matter for an administrator.
; The uninstaller: /S keeps settings and crash reports, /PURGE removes them too.
Unicode true
Target amd64-unicode
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel user
!ifdef UNCOMPRESSED
  SetCompress off
!else
  SetCompressor /SOLID lzma
  SetCompressorDictSize 64
!endif
SetDateSave off
AllowRootDirInstall false

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include x64.nsh

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Mosaicon"
!define SETTINGS "Software\${MAKER}"
!define MENUS "Software\Classes\SystemFileAssociations"

Name "Mosaicon"
; Who chooses another folder by "Browse..." gets one of this name in it.
InstallDir "$LOCALAPPDATA\Programs\Mosaicon"
OutFile "${OUTPUT}"
BrandingText "Mosaicon ${VERSION}"
!ifdef SIGNER
  !uninstfinalize `${SIGNER} "%1"` = 0
!endif
VIProductVersion "${VERSION4}"
VIFileVersion "${VERSION4}"
VIAddVersionKey ProductName "Mosaicon"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION4}"
VIAddVersionKey FileDescription "Mosaicon Setup"
VIAddVersionKey CompanyName "${MAKER}"
VIAddVersionKey LegalCopyright "${MAKER}"

Var AllUsers     ; 1: for all users of this computer
Var OldFolder    ; where a version is installed already; empty: none is
Var OldVersion
Var ForMe        ; controls of the page that asks for whom
Var ForAll

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_WELCOMEPAGE_TITLE "Mosaicon ${VERSION}"
!define MUI_WELCOMEPAGE_TEXT "$WelcomeText"
Var WelcomeText
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${STAGE}\LICENSE.txt"
Page custom AskForWhom LeaveForWhom
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE LeaveFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION StartProgram
!define MUI_FINISHPAGE_RUN_TEXT "Start Mosaicon"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; ---- Which installation is meant ----

!macro ChooseUsers
  ${If} $AllUsers == 1
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
!macroend

!macro FailWith CODE TEXT
  IfSilent +2
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}"
  SetErrorLevel ${CODE}
  Quit
!macroend

; What is installed for these users, and where this version goes.
Function FindOldVersion
  !insertmacro ChooseUsers
  ReadRegStr $OldFolder SHCTX "${UNINSTALL}" "InstallLocation"
  ReadRegStr $OldVersion SHCTX "${UNINSTALL}" "DisplayVersion"
  IfFileExists "$OldFolder\uninstall.exe" +2
  StrCpy $OldFolder ""
  ; As it was set above: nobody has asked for a folder.
  ${If} $INSTDIR == "$LOCALAPPDATA\Programs\Mosaicon"
    ${If} $OldFolder != ""
      StrCpy $INSTDIR $OldFolder
    ${ElseIf} $AllUsers == 1
      StrCpy $INSTDIR "$PROGRAMFILES64\Mosaicon"
    ${EndIf}
  ${EndIf}
FunctionEnd

; An installation for all users is not to get a second one beside it. The setup is started again with the
; rights for it.
Function LookForAllUsers
  ${If} $AllUsers == 1
  ${OrIf} $OldFolder != ""
    Return
  ${EndIf}
  ReadRegStr $0 HKLM "${UNINSTALL}" "InstallLocation"
  ${If} $0 == ""
  ${OrIfNot} ${FileExists} "$0\uninstall.exe"
    Return
  ${EndIf}
  ${If} ${Silent}
    SetErrorLevel 4
    Quit
  ${EndIf}
  MessageBox MB_OKCANCEL|MB_ICONINFORMATION "Mosaicon is installed for all users of this computer. To replace it, an administrator has to agree." IDOK +3
  SetErrorLevel 1
  Quit
  ExecShell "runas" "$EXEPATH" "/ALLUSERS"
  Quit
FunctionEnd

; What is in the way of an installation into the folder; empty: nothing. Nothing of the user's is written over.
Function ProblemOfFolder
  StrCpy $0 ""
  ${If} $INSTDIR == $OldFolder
  ${OrIf} ${FileExists} "$INSTDIR\Mosaicon.exe"
    Return
  ${EndIf}
  !include "${CHECKS}"
  Return
Taken:
  StrCpy $0 "The folder $INSTDIR holds other files that would be written over. Please choose another one."
FunctionEnd

Function LeaveFolder
  Call ProblemOfFolder
  ${If} $0 != ""
    MessageBox MB_OK|MB_ICONEXCLAMATION "$0"
    Abort
  ${EndIf}
FunctionEnd

; As the user, whoever installs.
Function StartProgram
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\Mosaicon.exe"'
FunctionEnd

Function .onInit
  SetRegView 64
  ${IfNot} ${RunningX64}
    !insertmacro FailWith 2 "Mosaicon needs a 64-bit Windows."
  ${EndIf}
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/ALLUSERS" $1
  StrCpy $AllUsers 1
  IfErrors 0 +2
  StrCpy $AllUsers 0
  ${If} $AllUsers == 1
    UserInfo::GetAccountType
    Pop $1
    ${If} $1 != "Admin"
      !insertmacro FailWith 4 "To install Mosaicon for all users, please start this program as an administrator."
    ${EndIf}
  ${EndIf}
  Call FindOldVersion
  Call LookForAllUsers
  Call ChooseSections
  ${If} $OldFolder == ""
    StrCpy $WelcomeText "This installs Mosaicon, which makes maps for Google Earth and the web of your orthophotos."
  ${ElseIf} $OldVersion == "${VERSION}"
    StrCpy $WelcomeText "Mosaicon ${VERSION} is installed already. This repairs it: all its files are written again. Your settings and maps stay as they are."
  ${Else}
    StrCpy $WelcomeText "This replaces Mosaicon $OldVersion by version ${VERSION}. Your settings and maps stay as they are."
  ${EndIf}
FunctionEnd

Function AskForWhom
  ; A version that is there already has settled it.
  ${If} $OldFolder != ""
  ${OrIf} $AllUsers == 1
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "For whom?" "Choose who is to use Mosaicon on this computer."
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 10u 10u 90% 12u "Only for &me"
  Pop $ForMe
  ${NSD_CreateRadioButton} 10u 28u 90% 12u "For &all users of this computer (asks for an administrator)"
  Pop $ForAll
  ${NSD_Check} $ForMe
  ${NSD_SetFocus} $ForMe
  nsDialogs::Show
FunctionEnd

; Rights cannot be had later: the setup is started again with them.
Function LeaveForWhom
  ${NSD_GetState} $ForAll $0
  ${If} $0 == ${BST_CHECKED}
    HideWindow
    ClearErrors
    ExecShell "runas" "$EXEPATH" "/ALLUSERS"
    ${If} ${Errors}
      ShowWindow $HWNDPARENT ${SW_SHOW}
      MessageBox MB_OK|MB_ICONINFORMATION "Without an administrator Mosaicon can be installed only for you."
      Abort
    ${EndIf}
    Quit
  ${EndIf}
FunctionEnd

; ---- Programs that run ----

; A program that runs cannot be written to. It is never ended: a job may be under way.
!macro CheckRunningIn UN
Function ${UN}IsRunning
  Exch $0
  StrCpy $1 ""
  ${For} $2 1 4
    StrCpy $3 "Mosaicon.exe"
    StrCmp $2 2 0 +2
    StrCpy $3 "mosaicon-batch.exe"
    StrCmp $2 3 0 +2
    StrCpy $3 "gdal2tiles\mosaicon-tiler.exe"
    StrCmp $2 4 0 +2
    StrCpy $3 "crashsender.exe"
    ${If} ${FileExists} "$0\$3"
      ClearErrors
      FileOpen $4 "$0\$3" a
      ${If} ${Errors}
        StrCpy $1 $3
      ${Else}
        FileClose $4
      ${EndIf}
    ${EndIf}
  ${Next}
  ClearErrors
  StrCpy $0 $1
  Exch $0
FunctionEnd
!macroend
!insertmacro CheckRunningIn ""
!insertmacro CheckRunningIn "un."

; FOLDER: of the programs. Goes on when none runs.
!macro WaitUntilEnded UN FOLDER
  ${Do}
    Push "${FOLDER}"
    Call ${UN}IsRunning
    Pop $0
    ${If} $0 == ""
      ${Break}
    ${EndIf}
    IfSilent 0 +3
    SetErrorLevel 3
    Quit
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Mosaicon is running ($0), or its files cannot be changed. Please wait until its job is done, close it, and try again." IDCANCEL`
      SetErrorLevel 3
      Quit
    ${EndIf}
  ${Loop}
!macroend

; ---- Installing ----

Section "Mosaicon" Program
  SectionIn RO
  !insertmacro ChooseUsers
  !insertmacro WaitUntilEnded "" "$INSTDIR"
  Call ProblemOfFolder
  ${If} $0 != ""
    !insertmacro FailWith 2 "$0"
  ${EndIf}
  ; Takes away what this version may no longer have. The uninstaller runs where it is and not in a copy, so it
  ; can be waited for. One that does not work is no reason to keep the old files.
  ${If} $OldFolder != ""
    !insertmacro WaitUntilEnded "" "$OldFolder"
    ExecWait '"$OldFolder\uninstall.exe" /S /UPGRADE _?=$OldFolder'
  ${EndIf}
  ; Before the files: whatever happens, it can be repaired and removed.
  ClearErrors
  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortCut "$SMPROGRAMS\Mosaicon.lnk" "$INSTDIR\Mosaicon.exe" "" "" "" "" "" "Makes maps of orthophotos"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "Mosaicon"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayIcon" "$INSTDIR\Mosaicon.exe"
  WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "${MAKER}"
  WriteRegStr SHCTX "${UNINSTALL}" "URLInfoAbout" "${WEB}"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegDWORD SHCTX "${UNINSTALL}" "EstimatedSize" ${SIZE}
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
  WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  ; Both are made anew where they are wanted.
  Delete "$DESKTOP\Mosaicon.lnk"
  DeleteRegKey SHCTX "${MENUS}\.tif\shell\Mosaicon"
  DeleteRegKey SHCTX "${MENUS}\.tiff\shell\Mosaicon"
  ClearErrors
  File /r "${STAGE}\*.*"
  ${If} ${Errors}
  ${OrIfNot} ${FileExists} "$INSTDIR\uninstall.exe"
    !insertmacro FailWith 2 "Not all files could be written to $INSTDIR."
  ${EndIf}
  ${If} $OldFolder != ""
  ${AndIf} $OldFolder != $INSTDIR
    Delete "$OldFolder\uninstall.exe"
    RMDir "$OldFolder"
  ${EndIf}
SectionEnd

Section /o "Icon on the desktop" Desktop
  CreateShortCut "$DESKTOP\Mosaicon.lnk" "$INSTDIR\Mosaicon.exe"
SectionEnd

Section /o "Entry in the menu of .tif files" Explorer
  !macro AddMenu EXTENSION
    WriteRegStr SHCTX "${MENUS}\${EXTENSION}\shell\Mosaicon" "" "Make a map with Mosaicon"
    WriteRegStr SHCTX "${MENUS}\${EXTENSION}\shell\Mosaicon" "Icon" "$INSTDIR\Mosaicon.exe"
    WriteRegStr SHCTX "${MENUS}\${EXTENSION}\shell\Mosaicon\command" "" '"$INSTDIR\Mosaicon.exe" "%1"'
  !macroend
  !insertmacro AddMenu ".tif"
  !insertmacro AddMenu ".tiff"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${Program} "The program, its tools and tutorials."
  !insertmacro MUI_DESCRIPTION_TEXT ${Desktop} "Starts Mosaicon from the desktop."
  !insertmacro MUI_DESCRIPTION_TEXT ${Explorer} "A right click on an orthophoto offers to make a map of it."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; What an older version has is kept; arguments and the user add to it.
Function ChooseSections
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/DESKTOP" $1
  ${IfNot} ${Errors}
  ${OrIf} ${FileExists} "$DESKTOP\Mosaicon.lnk"
    !insertmacro SelectSection ${Desktop}
  ${EndIf}
  ClearErrors
  ReadRegStr $2 SHCTX "${MENUS}\.tif\shell\Mosaicon" ""
  ${GetOptions} $0 "/EXPLORER" $1
  ${IfNot} ${Errors}
  ${OrIf} $2 != ""
    !insertmacro SelectSection ${Explorer}
  ${EndIf}
FunctionEnd

; ---- Removing ----

; Whose installation it is says the list of installed programs, whoever has started this.
Function un.onInit
  SetRegView 64
  StrCpy $AllUsers 0
  ReadRegStr $0 HKCU "${UNINSTALL}" "InstallLocation"
  ReadRegStr $1 HKLM "${UNINSTALL}" "InstallLocation"
  ${If} $0 != $INSTDIR
  ${AndIf} $1 == $INSTDIR
    StrCpy $AllUsers 1
  ${EndIf}
  !insertmacro ChooseUsers
  UserInfo::GetAccountType
  Pop $0
  ${If} $AllUsers == 1
  ${AndIf} $0 != "Admin"
    ${If} ${Silent}
      SetErrorLevel 4
      Quit
    ${EndIf}
    ExecShell "runas" "$INSTDIR\uninstall.exe"
    Quit
  ${EndIf}
FunctionEnd

Section "Uninstall"
  !insertmacro WaitUntilEnded "un." "$INSTDIR"
  ${GetParameters} $R0
  ; Only what was installed: the folder may hold maps of the user's. $R1: whether a file could not be removed.
  StrCpy $R1 0
  ClearErrors
  !include "${FILES}"
  ClearErrors
  ${GetOptions} $R0 "/UPGRADE" $1
  IfErrors 0 Done
  ${If} $R1 == 1
    !insertmacro FailWith 2 "Not all files could be removed. Please close the programs that use them, and try again."
  ${EndIf}
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Mosaicon.lnk"
  Delete "$DESKTOP\Mosaicon.lnk"
  DeleteRegKey SHCTX "${MENUS}\.tif\shell\Mosaicon"
  DeleteRegKey SHCTX "${MENUS}\.tiff\shell\Mosaicon"
  DeleteRegKey SHCTX "${UNINSTALL}"
  ClearErrors
  ${GetOptions} $R0 "/PURGE" $1
  IfErrors 0 Purge
  MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Remove your settings, logs and crash reports of Mosaicon too?$\r$\n$\r$\nYour maps stay where they are." /SD IDNO IDYES Purge
  Goto Done
Purge:
  ; Each user's own.
  SetShellVarContext current
  DeleteRegKey HKCU "${SETTINGS}\Mosaicon"
  DeleteRegKey HKCU "${SETTINGS}\Mosaicon Batch"
  DeleteRegKey /ifempty HKCU "${SETTINGS}"
  RMDir /r "$LOCALAPPDATA\Mosaicon\Logs"
  RMDir /r "$LOCALAPPDATA\Mosaicon\CrashReports"
  RMDir "$LOCALAPPDATA\Mosaicon"
Done:
SectionEnd
