; Closing the program before its files are replaced or removed.

!define CLOSE_ROUNDS 10
!define CLOSE_ROUND_MS 1000
!define PROCESS_ACCESS 0x101000 ; PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE

!macro CLOSE_PROGRAM_FUNCTIONS PREFIX

; Asks the windows of the installed program to close, as its user would. $R3 becomes a handle of it, if it has any.
Function ${PREFIX}AskProgramToClose
    StrCpy $0 0
    ${Do}
        System::Call 'user32::FindWindowExW(p 0, p r0, p 0, p 0) p .r0'
        ${If} $0 P= 0
            ${Break}
        ${EndIf}
        System::Call 'user32::IsWindowVisible(p r0) i .r1'
        ${If} $1 = 0
            ${Continue}
        ${EndIf}
        System::Call 'user32::GetWindowThreadProcessId(p r0, *i .r1) i'
        System::Call 'kernel32::OpenProcess(i ${PROCESS_ACCESS}, i 0, i r1) p .r2'
        ${If} $2 P= 0
            ${Continue}
        ${EndIf}
        System::Call 'kernel32::QueryFullProcessImageNameW(p r2, i 0, w .r3, *i ${NSIS_MAX_STRLEN}) i'
        ${If} $3 == "$INSTDIR\${PROGRAM}"
            System::Call 'user32::PostMessageW(p r0, i ${WM_CLOSE}, p 0, p 0) i'
            System::Call 'kernel32::CloseHandle(p R3) i'
            StrCpy $R3 $2
        ${Else}
            System::Call 'kernel32::CloseHandle(p r2) i'
        ${EndIf}
    ${Loop}
FunctionEnd

; Sets $R0 to whether the program runs, in whatever session: Windows lets nobody write a running program's file.
Function ${PREFIX}IsProgramRunning
    StrCpy $R0 no
    ${If} ${FileExists} "$INSTDIR\${PROGRAM}"
        ClearErrors
        FileOpen $R1 "$INSTDIR\${PROGRAM}" a
        ${If} ${Errors}
            StrCpy $R0 yes
        ${Else}
            FileClose $R1
        ${EndIf}
    ${EndIf}
    ClearErrors
FunctionEnd

; A dialog that is open closes in the first round, the window behind it in the next.
Function ${PREFIX}CloseProgram
    retry:
    StrCpy $R2 0
    StrCpy $R3 0
    ${Do}
        Call ${PREFIX}IsProgramRunning
        ${If} $R0 == no
            Return
        ${EndIf}
        DetailPrint "$(ClosingProgram)"
        Call ${PREFIX}AskProgramToClose
        ${If} $R3 P= 0
            ${Break} ; it is another user's
        ${EndIf}
        System::Call 'kernel32::WaitForSingleObject(p R3, i ${CLOSE_ROUND_MS}) i'
        IntOp $R2 $R2 + 1
    ${LoopUntil} $R2 >= ${CLOSE_ROUNDS}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(ProgramRuns)" /SD IDCANCEL IDRETRY retry
    SetErrorLevel 4
    Quit
FunctionEnd

!macroend
