; The installer: for one user, without elevation. scripts/package defines what it is made of:
;   NAME, MAKER, COPYRIGHT, VERSION   as src/resources/version.h has them
;   FILES                             the folder of what is installed
;   ICON, OUTPUT                      two files
;
; Command line of the installer:    /S   asks nothing
;                                   /AUTOSTART:ON, /AUTOSTART:OFF   whether it starts with Windows
; and of the uninstaller:           /S   asks nothing
;                                   /DELETESNAPSHOTS   takes the snapshots as well
; Both end with 0, or with 2 when nothing was changed.

Unicode true
Target amd64-unicode
SetCompressor /SOLID /FINAL lzma

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh

!define UNINSTALL_LIST "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define UNINSTALL_KEY "${UNINSTALL_LIST}\${NAME}"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define MAKER_KEY "Software\${MAKER}"
!define PRODUCT_KEY "${MAKER_KEY}\${NAME}"
!define MONITOR_CLASS "TessalyWnd"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel user
ManifestSupportedOS all
ManifestDPIAware true
BrandingText "${NAME} ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow
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
!define MUI_FINISHPAGE_RUN "$INSTDIR\TSEXE64.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Start ${NAME} now"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
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

; One at a time: two would have each other's files half replaced.
Function ${UN}BeAlone
    System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Local\${MAKER}_Setup_${NAME}") p .r0 ?e'
    Pop $0
    ${If} $0 = 183 ; ERROR_ALREADY_EXISTS
        MessageBox MB_OK|MB_ICONEXCLAMATION "The setup of ${NAME} is running already." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd

; Asks the one that runs to close, by the program $0. $1 is then 0 if none runs any more.
Function ${UN}CloseRunning
    StrCpy $WasRunning 0
    FindWindow $1 "${MONITOR_CLASS}"
    ${If} $1 P<> 0
        StrCpy $WasRunning 1
    ${EndIf}
    ${Do}
        ClearErrors
        ExecWait '"$0" /EXIT /QUIET' $1
        ${If} ${Errors}
            StrCpy $1 1
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
; which can be moved but not deleted.
Function ${UN}ChooseOld
    StrCpy $Old "$INSTDIR\old"
    RMDir /r "$Old"
    ${DoWhile} ${FileExists} "$Old\*.*"
        StrCpy $Old "$Old-"
        RMDir /r "$Old"
    ${Loop}
    ClearErrors
    CreateDirectory "$Old"
    StrCpy $Failed 0
    ${If} ${Errors}
        StrCpy $Failed 1
    ${EndIf}
FunctionEnd

Function ${UN}MoveAway
    ${If} $Failed = 0
    ${AndIf} ${FileExists} "$INSTDIR\$File"
        ClearErrors
        Rename "$INSTDIR\$File" "$Old\$File"
        ${If} ${Errors}
            StrCpy $Failed 1
        ${EndIf}
    ${EndIf}
FunctionEnd

Function ${UN}MoveBack
    ${If} ${FileExists} "$Old\$File"
        Rename "$Old\$File" "$INSTDIR\$File"
    ${EndIf}
FunctionEnd

; Those of this and of earlier times. The shell lets go of the library when it next has a message: five
; seconds for that, and what is in use then stays for the next time.
Function ${UN}DeleteOld
    ${For} $R0 1 25
        FindFirst $0 $1 "$INSTDIR\old*"
        ${DoWhile} $1 != ""
            RMDir /r "$INSTDIR\$1"
            FindNext $0 $1
        ${Loop}
        FindClose $0
        ${IfNot} ${FileExists} "$INSTDIR\old*"
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
        ClearErrors
        Rename "$INSTDIR\new\$File" "$INSTDIR\$File"
        ${If} ${Errors}
            StrCpy $Failed 1
        ${EndIf}
    ${EndIf}
FunctionEnd

; What was moved in goes; what is still in "new" never came to stand where the old file does.
Function MoveOut
    ${IfNot} ${FileExists} "$INSTDIR\new\$File"
        Delete "$INSTDIR\$File"
    ${EndIf}
FunctionEnd

Function DeleteNew
    SetOutPath "$TEMP" ; the current folder cannot be deleted
    RMDir /r "$INSTDIR\new"
    RMDir "$INSTDIR" ; these if they are empty
    RMDir "$LOCALAPPDATA\Programs"
FunctionEnd

Section "${NAME}"
    SectionIn RO
    ; All of the new version is written before anything of the old one is touched: a full disk
    ; changes nothing.
    RMDir /r "$INSTDIR\new"
    ClearErrors
    SetOutPath "$INSTDIR\new"
    File "${FILES}\TSDLL64.dll"
    File "${FILES}\TSEXE64.exe"
    File "${FILES}\Readme.txt"
    WriteUninstaller "$INSTDIR\new\Uninstall.exe"
    ${If} ${Errors}
        Call DeleteNew
        MessageBox MB_OK|MB_ICONSTOP "${NAME} could not be written to $INSTDIR. Nothing was changed." /SD IDOK
        Abort
    ${EndIf}
    SetOutPath "$TEMP"

    StrCpy $0 "$INSTDIR\new\TSEXE64.exe"
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
        Call DeleteOld
        Call DeleteNew
        Call StartAgain
        MessageBox MB_OK|MB_ICONSTOP "A file in $INSTDIR is in use. Nothing was changed." /SD IDOK
        Abort
    ${EndIf}
    Call DeleteOld
    Call DeleteNew

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
SectionEnd

Section "Start with Windows" SectionAutoStart
SectionEnd

Section "-"
    ${If} ${SectionIsSelected} ${SectionAutoStart}
        ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART:ON /QUIET' $0
    ${Else}
        ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART:OFF /QUIET' $0
    ${EndIf}
    ${If} $0 <> 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "The start with Windows could not be set." /SD IDOK
    ${EndIf}
    Call StartAgain
SectionEnd

Function .onInit
    Call BeAlone
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${NAME}"
    ; An update leaves the start with Windows as it is.
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "DisplayVersion"
    ReadRegStr $1 HKCU "${RUN_KEY}" "${NAME}"
    ${If} $0 != ""
    ${AndIf} $1 == ""
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
    StrCpy $2 1 ; whether the start with Windows is another copy's, or nobody's
    ${If} ${FileExists} "$INSTDIR\TSEXE64.exe"
    ${AndIf} ${FileExists} "$INSTDIR\TSDLL64.dll"
        StrCpy $0 "$INSTDIR\TSEXE64.exe"
        Call un.CloseRunning
        ${If} $1 <> 0
            Abort
        ${EndIf}
        ExecWait '"$INSTDIR\TSEXE64.exe" /AUTOSTART /QUIET' $2
    ${EndIf}

    Call un.ChooseOld
    !insertmacro ForEachFile un.MoveAway
    ${If} $Failed = 1
        !insertmacro ForEachFile un.MoveBack
        Call un.DeleteOld
        Call un.StartAgain
        MessageBox MB_OK|MB_ICONSTOP "A file in $INSTDIR is in use. Nothing was changed." /SD IDOK
        Abort
    ${EndIf}
    Call un.DeleteOld
    RMDir /r "$INSTDIR\new"
    RMDir "$INSTDIR"
    RMDir "$LOCALAPPDATA\Programs"

    Delete "$SMPROGRAMS\${NAME}.lnk"
    ${If} $2 = 0
        DeleteRegValue HKCU "${RUN_KEY}" "${NAME}"
    ${EndIf}
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    DeleteRegKey /ifempty HKCU "${UNINSTALL_LIST}"
    DeleteRegKey HKCU "${PRODUCT_KEY}\Setup"
    DeleteRegKey /ifempty HKCU "${PRODUCT_KEY}"
    DeleteRegKey /ifempty HKCU "${MAKER_KEY}"
SectionEnd

Section /o "un.Snapshots" SectionSnapshots
    DeleteRegKey HKCU "${PRODUCT_KEY}"
    DeleteRegKey /ifempty HKCU "${MAKER_KEY}"
SectionEnd

Function un.onInit
    Call un.BeAlone
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/DELETESNAPSHOTS" $1
    ${IfNot} ${Errors}
        !insertmacro SelectSection ${SectionSnapshots}
    ${EndIf}
FunctionEnd
