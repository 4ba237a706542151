; The installer: for one user, without elevation. scripts/package defines what it is made of:
;   NAME, MAKER, COPYRIGHT, VERSION   as src/resources/version.h has them
;   FILES                             the folder of what is installed
;   ICON, PICTURE, OUTPUT             three files
;
; Command line of the installer:    /S   asks nothing
;                                   /AUTOSTART:ON, /AUTOSTART:OFF   whether it starts with Windows
; and of the uninstaller:           /S   asks nothing
;                                   /DELETESNAPSHOTS   takes the snapshots and layouts as well
; Both end with 0 (the uninstaller only with _?=FOLDER: else a copy of it does the work); with 1 when the
; user cancelled before anything was done; with 2 when something failed, nothing being changed then; the
; installer with 3 when all files are installed, but the start with Windows or an entry could not be set.

Unicode true
Target amd64-unicode
SetCompressor /SOLID /FINAL lzma

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh
!include Win\WinNT.nsh
!include Win\WinError.nsh
!include StrFunc.nsh
${StrStr} ; declares it
${UnStrStr}

!define UNINSTALL_LIST "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define UNINSTALL_KEY "${UNINSTALL_LIST}\${NAME}"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define MAKER_KEY "Software\${MAKER}"
!define PRODUCT_KEY "${MAKER_KEY}\${NAME}"
!define MONITOR_CLASS "TessalyWnd"
; Folders for a while, below that of the program. Nobody else's bear such names.
!define NEW "~setup-new"
!define OLD "~setup-old"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel user
ManifestSupportedOS all
ManifestDPIAware true
BrandingText "${NAME} ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow
SpaceTexts none
AllowSkipFiles off

VIProductVersion ${VERSION}
VIFileVersion ${VERSION}
VIAddVersionKey /LANG=1033 "CompanyName" "${MAKER}"
VIAddVersionKey /LANG=1033 "FileDescription" "${NAME} setup"
VIAddVersionKey /LANG=1033 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=1033 "LegalCopyright" "${COPYRIGHT}"
VIAddVersionKey /LANG=1033 "ProductName" "${NAME}"
VIAddVersionKey /LANG=1033 "ProductVersion" "${VERSION}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_COMPONENTSPAGE_NODESC
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"

!define MUI_PAGE_HEADER_TEXT "Install ${NAME}"
!define MUI_PAGE_HEADER_SUBTEXT "It keeps the icons of the desktop where they belong."
!define MUI_COMPONENTSPAGE_TEXT_TOP "${NAME} is installed for you alone, in $INSTDIR. \
    An older version that runs is closed, replaced and started again."
!define MUI_COMPONENTSPAGE_TEXT_COMPLIST "Choose what it shall do:"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\TSEXE64.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Start ${NAME} now"
!insertmacro MUI_PAGE_FINISH

!define MUI_PAGE_HEADER_TEXT "Remove ${NAME}"
!define MUI_PAGE_HEADER_SUBTEXT "The program is closed and its files are deleted."
!define MUI_COMPONENTSPAGE_TEXT_TOP "Your snapshots, and the layouts kept for sets of displays, stay for \
    a later installation unless you choose them here."
!define MUI_COMPONENTSPAGE_TEXT_COMPLIST "Choose what to delete:"
!define MUI_CUSTOMFUNCTION_UNABORT un.DeleteOwnCopy
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var WasRunning ; 1: it has to be started again
Var Failed     ; 1: a file could not be moved
Var Old        ; the folder that the old files are moved to
Var File       ; the name of one of the files

!macro ForEachFile FUNCTION
    StrCpy $File "TSDLL64.dll"
    Call ${FUNCTION}
    StrCpy $File "TSEXE64.exe"
    Call ${FUNCTION}
    StrCpy $File "Readme.txt"
    Call ${FUNCTION}
    StrCpy $File "Uninstall.exe"
    Call ${FUNCTION}
!macroend

; What both do. UN is empty, or "un."
!macro Functions UN

; One at a time: two would have each other's files half replaced. Of a user, in whatever session. None is
; had if the user's other one runs as administrator.
Function ${UN}BeAlone
    System::Call 'advapi32::GetUserNameW(w .r0, *i ${NSIS_MAX_STRLEN})'
    System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Global\${MAKER}_Setup_${NAME}_$0") p .r1 ?e'
    Pop $0
    ${If} $0 = ${ERROR_ALREADY_EXISTS}
    ${OrIf} $1 P= 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "The setup of ${NAME} is running already." /SD IDOK
        !if "${UN}" != ""
            Call un.DeleteOwnCopy
        !endif
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd

; Asks the one that runs to close, by the program $0. $1 is then 0 if none runs any more.
Function ${UN}CloseRunning
    ; By its mark: a command that works without a monitor has a window of the class, too.
    StrCpy $WasRunning 0
    System::Call 'kernel32::OpenEventW(i ${SYNCHRONIZE}, i 0, w "Local\${MAKER}_App_${NAME}") p .r1'
    ${If} $1 P<> 0
        System::Call 'kernel32::CloseHandle(p r1)'
        StrCpy $WasRunning 1
    ${EndIf}
    ${Do}
        ClearErrors
        ExecWait '"$0" /EXIT /QUIET' $1
        ; One that is damaged can ask nobody. If none runs, nobody has to be asked.
        ${If} ${Errors}
        ${OrIf} $1 = 3
            StrCpy $1 0
            FindWindow $2 "${MONITOR_CLASS}"
            ${If} $2 P<> 0
                StrCpy $1 1
            ${EndIf}
        ${EndIf}
        ${If} $1 = 0
            Return
        ${EndIf}
    ${LoopWhile} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
        "${NAME} is still running: it was asked to close and did not in time." /SD IDCANCEL IDRETRY`
FunctionEnd

Function ${UN}StartAgain
    ${If} $WasRunning = 1
    ${AndIf} ${FileExists} "$INSTDIR\TSEXE64.exe"
        Exec '"$INSTDIR\TSEXE64.exe" /QUIET'
    ${EndIf}
FunctionEnd

; A folder that is not there yet. One that is may hold a library that the shell has mapped still,
; which can be moved but not deleted, or files that could not be moved back.
Function ${UN}ChooseOld
    StrCpy $Old "$INSTDIR\${OLD}"
    ${DoWhile} ${FileExists} "$Old\*.*"
        StrCpy $Old "$Old-"
    ${Loop}
    ClearErrors
    CreateDirectory "$Old"
    StrCpy $Failed 0
    ${If} ${Errors}
        StrCpy $Failed 1
    ${EndIf}
FunctionEnd

; The file $File from the folder $R2 to $R3. A virus scanner looks at what was just written or run: two
; seconds for that.
Function ${UN}Move
    ${For} $R4 1 10
        ClearErrors
        Rename "$R2\$File" "$R3\$File"
        ${IfNot} ${Errors}
            Return
        ${EndIf}
        Sleep 200
    ${Next}
    StrCpy $Failed 1
FunctionEnd

Function ${UN}MoveAway
    ${If} $Failed = 0
    ${AndIf} ${FileExists} "$INSTDIR\$File"
    ${AndIf} "$INSTDIR\$File" != $EXEPATH ; an uninstaller without a copy: it has its own file open
        StrCpy $R2 $INSTDIR
        StrCpy $R3 $Old
        Call ${UN}Move
    ${EndIf}
FunctionEnd

Function ${UN}MoveBack
    ${If} ${FileExists} "$Old\$File"
        StrCpy $R2 $Old
        StrCpy $R3 $INSTDIR
        Call ${UN}Move
    ${EndIf}
FunctionEnd

; After what could not be moved back, if anything: it stays where it is.
Function ${UN}TellNothingChanged
    RMDir "$Old" ; if it is empty
    ${If} ${FileExists} "$Old\*.*"
        MessageBox MB_OK|MB_ICONSTOP "A file in $INSTDIR is in use, and not all could be put back: \
            what is missing there is in $Old." /SD IDOK
    ${Else}
        MessageBox MB_OK|MB_ICONSTOP "A file in $INSTDIR is in use. Nothing was changed." /SD IDOK
    ${EndIf}
FunctionEnd

; $R1 is then 1 if this copy's library stands in the value, as it is or in its short form.
Function ${UN}IsNamedInRunKey
    StrCpy $R1 0
    ReadRegStr $0 HKCU "${RUN_KEY}" "${NAME}"
    GetFullPathName /SHORT $1 "$INSTDIR"
    !if "${UN}" == ""
        ${StrStr} $2 $0 "$INSTDIR\TSDLL64.dll"
        ${StrStr} $3 $0 "$1\TSDLL64.dll"
    !else
        ${UnStrStr} $2 $0 "$INSTDIR\TSDLL64.dll"
        ${UnStrStr} $3 $0 "$1\TSDLL64.dll"
    !endif
    ${If} "$2$3" != ""
        StrCpy $R1 1
    ${EndIf}
FunctionEnd

; $R1 is then 1 if this copy is the one that starts with Windows. One that is damaged cannot tell.
Function ${UN}IsStartedWithWindows
    ClearErrors
    ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART /QUIET' $0
    ${If} ${Errors}
    ${OrIf} $0 = 3
        Call ${UN}IsNamedInRunKey
    ${ElseIf} $0 = 0
        StrCpy $R1 1
    ${Else}
        StrCpy $R1 0
    ${EndIf}
FunctionEnd

; Those of this and of earlier times. The shell lets go of the library when it next has a message: five
; seconds for that, and what is in use then stays for the next time.
Function ${UN}DeleteOld
    ${For} $R0 1 25
        FindFirst $0 $1 "$INSTDIR\${OLD}*"
        ${DoWhile} $1 != ""
            RMDir /r "$INSTDIR\$1"
            FindNext $0 $1
        ${Loop}
        FindClose $0
        ${IfNot} ${FileExists} "$INSTDIR\${OLD}*"
            Return
        ${EndIf}
        Sleep 200
    ${Next}
FunctionEnd

!macroend
!insertmacro Functions ""
!insertmacro Functions "un."

; The installer

Function MoveIn
    ${If} $Failed = 0
        StrCpy $R2 "$INSTDIR\${NEW}"
        StrCpy $R3 $INSTDIR
        Call Move
    ${EndIf}
FunctionEnd

; What was moved in; what is still with the new files never came to stand where the old one does.
Function MoveOut
    ${IfNot} ${FileExists} "$INSTDIR\${NEW}\$File"
        StrCpy $R2 $INSTDIR
        StrCpy $R3 "$INSTDIR\${NEW}"
        Call Move
    ${EndIf}
FunctionEnd

Function DeleteNew
    SetOutPath "$TEMP" ; the current folder cannot be deleted
    RMDir /r "$INSTDIR\${NEW}"
    RMDir "$INSTDIR" ; these if they are empty
    RMDir "$LOCALAPPDATA\Programs"
FunctionEnd

Section "${NAME}"
    SectionIn RO
    ; All of the new version is written before anything of the old one is touched: a full disk
    ; changes nothing.
    RMDir /r "$INSTDIR\${NEW}"
    ClearErrors
    SetOutPath "$INSTDIR\${NEW}"
    File "${FILES}\TSDLL64.dll"
    File "${FILES}\TSEXE64.exe"
    File "${FILES}\Readme.txt"
    WriteUninstaller "$INSTDIR\${NEW}\Uninstall.exe"
    ${If} ${Errors}
        Call DeleteNew
        MessageBox MB_OK|MB_ICONSTOP "${NAME} could not be written to $INSTDIR. Nothing was changed." /SD IDOK
        Abort
    ${EndIf}
    SetOutPath "$TEMP"

    StrCpy $0 "$INSTDIR\${NEW}\TSEXE64.exe"
    Call CloseRunning
    ${If} $1 <> 0
        Call DeleteNew
        Abort
    ${EndIf}

    ; Moving is all that is left, on one disk.
    Call ChooseOld
    !insertmacro ForEachFile MoveAway
    !insertmacro ForEachFile MoveIn
    ${If} $Failed = 1
        !insertmacro ForEachFile MoveOut
        !insertmacro ForEachFile MoveBack
        Call DeleteNew
        Call StartAgain
        Call TellNothingChanged
        Abort
    ${EndIf}
    Call DeleteOld
    Call DeleteNew

    ClearErrors
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\TSEXE64.exe" "" "" "" "" "" \
        "Keeps the icons of the desktop where they belong"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\TSEXE64.exe,0"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "${MAKER}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
    SectionGetSize 0 $0 ; KB
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    ${If} ${Errors}
        SetErrorLevel 3
        MessageBox MB_OK|MB_ICONEXCLAMATION "${NAME} is installed, but its entry in the start menu or in the \
            list of programs could not be written." /SD IDOK
    ${EndIf}
SectionEnd

Section "Start with Windows" SectionAutoStart
SectionEnd

Section "-"
    Call IsStartedWithWindows
    ClearErrors
    ${If} ${SectionIsSelected} ${SectionAutoStart}
        ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART:ON /QUIET' $0
    ${ElseIf} $R1 = 1 ; another copy's start is not this one's to turn off
        ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART:OFF /QUIET' $0
    ${Else}
        StrCpy $0 0
    ${EndIf}
    ${If} ${Errors}
    ${OrIf} $0 <> 0
        SetErrorLevel 3
        MessageBox MB_OK|MB_ICONEXCLAMATION "${NAME} is installed, but its start with Windows could not be set." \
            /SD IDOK
    ${EndIf}
    Call StartAgain
SectionEnd

Function .onInit
    Call BeAlone
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${NAME}"
    ; An update leaves the start with Windows as it is.
    Call IsNamedInRunKey
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "DisplayVersion"
    ${If} $0 != ""
    ${AndIf} $R1 = 0
        !insertmacro UnselectSection ${SectionAutoStart}
    ${EndIf}
    ${GetParameters} $0
    ${GetOptions} $0 "/AUTOSTART:" $1
    ${If} $1 == "ON"
        !insertmacro SelectSection ${SectionAutoStart}
    ${ElseIf} $1 == "OFF"
        !insertmacro UnselectSection ${SectionAutoStart}
    ${EndIf}
FunctionEnd

; The platform refused to write a file, and said so.
Function .onInstFailed
    Call DeleteNew
FunctionEnd

; The uninstaller

Section "un.${NAME}"
    SectionIn RO
    SetOutPath "$TEMP"
    ${If} ${FileExists} "$INSTDIR\TSEXE64.exe"
    ${AndIf} ${FileExists} "$INSTDIR\TSDLL64.dll"
        StrCpy $0 "$INSTDIR\TSEXE64.exe"
        Call un.CloseRunning
        ${If} $1 <> 0
            Abort
        ${EndIf}
    ${EndIf}
    Call un.IsStartedWithWindows ; while the files are there

    Call un.ChooseOld
    !insertmacro ForEachFile un.MoveAway
    ${If} $Failed = 1
        !insertmacro ForEachFile un.MoveBack
        Call un.StartAgain
        Call un.TellNothingChanged
        Abort
    ${EndIf}
    Call un.DeleteOld
    RMDir /r "$INSTDIR\${NEW}"
    RMDir "$INSTDIR"
    RMDir "$LOCALAPPDATA\Programs"

    Delete "$SMPROGRAMS\${NAME}.lnk"
    ${If} $R1 = 1
        DeleteRegValue HKCU "${RUN_KEY}" "${NAME}"
    ${EndIf}
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    DeleteRegKey /ifempty HKCU "${UNINSTALL_LIST}"
    DeleteRegKey HKCU "${PRODUCT_KEY}\Setup"
    DeleteRegKey /ifempty HKCU "${PRODUCT_KEY}"
    DeleteRegKey /ifempty HKCU "${MAKER_KEY}"
SectionEnd

Section /o "un.Snapshots and layouts" SectionSnapshots
    DeleteRegKey HKCU "${PRODUCT_KEY}"
    DeleteRegKey /ifempty HKCU "${MAKER_KEY}"
SectionEnd

Function un.onInit
    Call un.BeAlone
    ; A copy of it that was put elsewhere would take the entries of the one that is installed.
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != ""
    ${AndIf} $0 != $INSTDIR
    ${AndIfNot} ${FileExists} "$INSTDIR\TSEXE64.exe"
    ${AndIfNot} ${FileExists} "$INSTDIR\TSDLL64.dll"
        MessageBox MB_OK|MB_ICONSTOP "${NAME} is not in $INSTDIR. Nothing was changed." /SD IDOK
        Call un.DeleteOwnCopy
        SetErrorLevel 2
        Quit
    ${EndIf}
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/DELETESNAPSHOTS" $1
    ${IfNot} ${Errors}
        !insertmacro SelectSection ${SectionSnapshots}
    ${EndIf}
FunctionEnd

; The uninstaller runs from a copy of itself in a folder for temporary files, which the platform is asked
; to delete at its next start; that it does for administrators alone. No program's file can be deleted
; while it runs: a command tries once a second, for half a minute.
Function un.DeleteOwnCopy
    StrLen $0 "$TEMP\~nsu"
    StrCpy $1 "$EXEDIR" $0
    ${If} $1 != "$TEMP\~nsu"
        Return
    ${EndIf}
    ; By a variable: the prompt takes a "%" in the path for its own.
    System::Call 'kernel32::SetEnvironmentVariableW(w "TESSALY_COPY", w "$EXEDIR")'
    ; The current folder cannot be deleted, and the prompt looks for programs there first.
    SetOutPath "$SYSDIR"
    ExecShell "" "$SYSDIR\cmd.exe" '/d /c for /l %i in (1,1,30) do (ping -n 2 127.0.0.1 >nul & \
        rd /s /q "%TESSALY_COPY%" & if not exist "%TESSALY_COPY%" exit)' SW_HIDE
FunctionEnd

Function un.onUninstSuccess
    Call un.DeleteOwnCopy
FunctionEnd

Function un.onUninstFailed
    Call un.DeleteOwnCopy
FunctionEnd
