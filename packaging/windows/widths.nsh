; Which of the two programs the installer installs. A program loads plugins of its own width only, so that plugins which are
; there decide.
Var Width       ; "64" or "32"
Var WidthIsSaid ; "yes" once the command line or the user has said it
Var Button64

!define I386 332 ; what a 32-bit file says of its machine

; Leaves the number of a program file's machine in $0; empty when there is no such file.
!macro MACHINE_OF file
    StrCpy $0 ""
    ClearErrors
    FileOpen $1 "${file}" r
    ${IfNot} ${Errors}
        FileSeek $1 60 SET
        FileReadByte $1 $2
        FileReadByte $1 $3
        IntOp $3 $3 * 256
        IntOp $2 $2 + $3
        IntOp $2 $2 + 4
        FileSeek $1 $2 SET
        FileReadByte $1 $2
        FileReadByte $1 $3
        IntOp $3 $3 * 256
        IntOp $0 $2 + $3
        FileClose $1
    ${EndIf}
!macroend

; Takes what was registered by an earlier installation out again.
!macro UNREGISTER_PLUGINS
    ReadRegStr $0 HKCU "Software\QRVRC" "Width"
    StrCpy $1 "$SYSDIR\regsvr32.exe"
    ${If} $0 == 64
        StrCpy $1 "$WINDIR\Sysnative\regsvr32.exe" ; the 64-bit one, as a 32-bit program sees it
    ${EndIf}
    ${If} $0 != ""
        ExecWait '"$1" /u /s "$INSTDIR\Plugins\qrvrcBHDGS.dll"'
        ExecWait '"$1" /u /s "$INSTDIR\Plugins\qrvrcWatch.dll"'
    ${EndIf}
!macroend
!define UnregisterPlugins "!insertmacro UNREGISTER_PLUGINS"

; Whether $R0 is the name of one of the plugins that come with the program in both widths; leaves "yes" in $R1.
Function IsOurs
    StrCpy $R1 ""
    ${If} $R0 == "qrvrcBHDGS"
    ${OrIf} $R0 == "qrvrcWatch"
        StrCpy $R1 "yes"
    ${EndIf}
FunctionEnd

; Leaves "yes" in $R9 when a plugin in the folder is a 32-bit one, or the program there is.
Function HasOld32BitFolder
    !insertmacro MACHINE_OF "$INSTDIR\QRVV3RC.exe"
    ${If} $0 == ${I386}
        StrCpy $R9 "yes"
    ${EndIf}
    FindFirst $R2 $R3 "$INSTDIR\Plugins\*.dll"
    ${DoWhile} $R3 != ""
        StrCpy $R0 $R3 -4
        Call IsOurs
        !insertmacro MACHINE_OF "$INSTDIR\Plugins\$R3"
        ${If} $0 == ${I386}
        ${AndIf} $R1 == ""
            StrCpy $R9 "yes"
        ${EndIf}
        FindNext $R2 $R3
    ${Loop}
    FindClose $R2
FunctionEnd

; Leaves "yes" in $R9 when a plugin is registered on this machine for 32-bit programs alone.
Function Has32BitPlugin
    StrCpy $R2 0
    ${Do}
        EnumRegKey $R3 HKCR "" $R2
        ${If} $R3 == ""
            ${Break}
        ${EndIf}
        IntOp $R2 $R2 + 1
        StrCpy $R4 $R3 "" -10
        ${If} $R4 != ".clsPlugin"
            ${Continue}
        ${EndIf}
        StrCpy $R0 $R3 -10
        Call IsOurs
        ReadRegStr $R5 HKCR "$R3\CLSID" ""
        SetRegView 64
        ReadRegStr $R6 HKCR "CLSID\$R5\InprocServer32" ""
        SetRegView 32
        ReadRegStr $R7 HKCR "CLSID\$R5\InprocServer32" ""
        ${If} $R1 == ""
        ${AndIf} $R6 == ""
        ${AndIf} $R7 != ""
            StrCpy $R9 "yes"
        ${EndIf}
    ${Loop}
FunctionEnd

Function GuessWidth
    StrCpy $R9 ""
    Call HasOld32BitFolder
    Call Has32BitPlugin
    StrCpy $Width "64"
    ${If} $R9 == "yes"
    ${OrIfNot} ${RunningX64}
        StrCpy $Width "32"
    ${EndIf}
FunctionEnd

Function .onInit
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/32" $1
    ${IfNot} ${Errors}
        StrCpy $Width "32"
        StrCpy $WidthIsSaid "yes"
    ${EndIf}
    ClearErrors
    ${GetOptions} $0 "/64" $1
    ${IfNot} ${Errors}
        StrCpy $Width "64"
        StrCpy $WidthIsSaid "yes"
    ${EndIf}
    ${If} $WidthIsSaid == ""
        Call GuessWidth ; what a silent installation goes by
    ${EndIf}
FunctionEnd

Function AskForWidth
    ${IfNot} ${RunningX64}
        Abort ; nothing to choose
    ${EndIf}
    ${If} $WidthIsSaid == ""
        Call GuessWidth ; the user may have chosen another folder
    ${EndIf}
    !insertmacro MUI_HEADER_TEXT "Which program" "The program loads only plugins of its own width."
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateRadioButton} 0 0 100% 12u "&64-bit program: right unless you have 32-bit plugins"
    Pop $Button64
    ${NSD_CreateRadioButton} 0 16u 100% 12u "&32-bit program: for plugins that were made for 32-bit programs"
    Pop $1
    ${NSD_CreateLabel} 0 40u 100% 36u "Chosen for you is what the plugins need that were found on this computer and in \
        the folder. Plugins that come with the program are there in both widths."
    Pop $0
    ${If} $Width == 64
        ${NSD_Check} $Button64
    ${Else}
        ${NSD_Check} $1
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function TakeWidth
    ${NSD_GetState} $Button64 $0
    StrCpy $Width "32"
    ${If} $0 == ${BST_CHECKED}
        StrCpy $Width "64"
    ${EndIf}
    StrCpy $WidthIsSaid "yes"
FunctionEnd
