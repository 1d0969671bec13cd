; Installs the program folder for the current user, who needs no rights of an administrator. The folder stays writable, so
; that the program keeps its state in it and updates itself there. Brings the 64-bit and the 32-bit program and installs one:
; that which the plugins on this machine need, unless the user (or the option /64 or /32) says otherwise.
; Given: VERSION, STAGE (folder with 64/QRVRC, 32/QRVRC and files.nsh), ASSETS, OUTPUT.
Target x86-unicode ; runs on both
SetCompressor /SOLID lzma
SetCompressorDictSize 64 ; both programs share much
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include nsDialogs.nsh
!include x64.nsh
!include "${__FILEDIR__}/widths.nsh"
!include "${STAGE}/files.nsh"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\QRVRC"

Name "QRVRC ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\QRVRC"
InstallDirRegKey HKCU "Software\QRVRC" "Folder"
RequestExecutionLevel user
ManifestDPIAware true

VIProductVersion "${VERSION}"
VIAddVersionKey "ProductName" "QRVRC"
VIAddVersionKey "CompanyName" "QRVRC"
VIAddVersionKey "FileDescription" "QRVRC Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" ""

!define MUI_ICON "${ASSETS}/icons/qrvv3rc.ico"
!define MUI_UNICON "${ASSETS}/icons/qrvv3rc.ico"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN "$INSTDIR\QRVV3RC.exe"
!insertmacro MUI_PAGE_DIRECTORY
Page custom AskForWidth TakeWidth
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Section
    SetOutPath "$INSTDIR"
    ; A program that runs cannot be written over.
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\QRVV3RC.exe"
        Delete "$INSTDIR\QRVV3RC.exe"
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONSTOP "QRVRC is running. Please quit it first." /SD IDOK
            Abort
        ${EndIf}
    ${EndIf}
    ${UnregisterPlugins} ; those of the other width would stay otherwise
    ${If} $Width == 64
        File /r "${STAGE}/64/QRVRC/*"
    ${Else}
        File /r "${STAGE}/32/QRVRC/*"
    ${EndIf}
    ; The plugins that come with it are good to use at once.
    ExecWait '"$INSTDIR\QRVV3RC.exe" --app-folder "$INSTDIR" --register-component "$INSTDIR\Plugins\qrvrcBHDGS.dll"'
    ExecWait '"$INSTDIR\QRVV3RC.exe" --app-folder "$INSTDIR" --register-component "$INSTDIR\Plugins\qrvrcWatch.dll"'

    CreateShortcut "$SMPROGRAMS\QRVRC.lnk" "$INSTDIR\QRVV3RC.exe"
    WriteRegStr HKCU "Software\QRVRC" "Folder" "$INSTDIR"
    WriteRegStr HKCU "Software\QRVRC" "Width" "$Width"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "QRVRC"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\QRVV3RC.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; What the user and the program added stays: connections, settings, logs.
Section "Uninstall"
    ${UnregisterPlugins}
    !insertmacro DELETE_FILES
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\QRVRC.lnk"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    DeleteRegKey HKCU "Software\QRVRC"
SectionEnd
