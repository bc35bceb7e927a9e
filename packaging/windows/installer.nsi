; The setup program. Made by packaging/windows/build, which gives VERSION, VERSION_NUMBERS (four of them), CONTENT (the
; folder that is installed), LISTS (of its files), LICENSE_TEXT, ICON, SIZE_KB, WEB_URL and OUT.
;
;   evox-sinar-VERSION-setup.exe [/S] [/CURRENTUSER | /ALLUSERS] [/DESKTOPICON] [/D=FOLDER]
;
; Ends with 0 when the program is installed; 1 given up by the user, 2 a file could not be written, 3 Windows is too
; old, 4 the program still runs, 5 an older version could not be removed, 6 not an administrator.

Target amd64-unicode
SetCompressor /SOLID lzma
SetCompressorDictSize 32
ManifestDPIAware true
AllowSkipFiles off

!define NAME "e-VOX SINAR"
!define PROGRAM "evox-sinar.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define RUN_VALUE "eVOX-SINAR"
!define FIREWALL_RULE "eVOX SINAR"
!define SETTINGS "$APPDATA\SINAR\${NAME}"
!define OLDEST_BUILD 7601 ; Windows 7 with its first service pack

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_DEFAULT_CURRENTUSER
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "${NAME}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"

!include MultiUser.nsh
!include MUI2.nsh
!include LogicLib.nsh
!include WinVer.nsh
!include FileFunc.nsh
!include installer-close.nsh

Name "${NAME}"
OutFile "${OUT}"
BrandingText "${NAME} ${VERSION}"
VIProductVersion "${VERSION_NUMBERS}"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${NAME} Setup"
VIAddVersionKey CompanyName "SINAR"
VIAddVersionKey LegalCopyright "MIT"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_LANGDLL_REGISTRY_ROOT SHCTX
!define MUI_LANGDLL_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MUI_LANGDLL_REGISTRY_VALUENAME "SetupLanguage"
; Not from here, which may be an administrator's session: the desktop's own starts it.
!define MUI_FINISHPAGE_RUN "$WINDIR\explorer.exe"
!define MUI_FINISHPAGE_RUN_PARAMETERS "$\"$INSTDIR\${PROGRAM}$\""
!define MUI_FINISHPAGE_RUN_TEXT "$(RunProgram)"

!insertmacro MUI_PAGE_LICENSE "${LICENSE_TEXT}"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE Indonesian
!insertmacro MUI_LANGUAGE English
!include installer-texts.nsh
!insertmacro MUI_RESERVEFILE_LANGDLL

Var hadDesktopIcon

!insertmacro CLOSE_PROGRAM_FUNCTIONS ""
!insertmacro CLOSE_PROGRAM_FUNCTIONS "un."

; ---- Installing ------------------------------------------------------------------------------------------------------

!macro GIVE_UP MESSAGE CODE
    MessageBox MB_OK|MB_ICONSTOP "${MESSAGE}" /SD IDOK
    SetErrorLevel ${CODE}
    Quit
!macroend

Function .onInit
    ${IfNot} ${AtLeastBuild} ${OLDEST_BUILD}
        !insertmacro GIVE_UP "$(WindowsTooOld)" 3
    ${EndIf}
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/ALLUSERS" $R1
    ${IfNot} ${Errors}
        UserInfo::GetAccountType
        Pop $R1
        ${If} $R1 != "Admin"
            !insertmacro GIVE_UP "$(NotAnAdministrator)" 6
        ${EndIf}
    ${EndIf}
    StrCpy $R2 $INSTDIR ; empty without /D=
    !insertmacro MULTIUSER_INIT
    ${If} $R2 != ""
        StrCpy $INSTDIR $R2
    ${EndIf}
    !insertmacro MUI_LANGDLL_DISPLAY
FunctionEnd

Function SelectDesktopIcon
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/DESKTOPICON" $R1
    ${IfNot} ${Errors}
    ${OrIf} ${FileExists} "$DESKTOP\${NAME}.lnk"
        StrCpy $hadDesktopIcon yes
    ${EndIf}
FunctionEnd

; What the older version installed goes, what the user has set stays.
Function RemoveOlder
    ReadRegStr $R0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $R0 == ""
    ${OrIfNot} ${FileExists} "$R0\uninstall.exe"
        Return
    ${EndIf}
    DetailPrint "$(RemovingOlder)"
    ClearErrors
    ExecWait '"$R0\uninstall.exe" /S /UPGRADE /$MultiUser.InstallMode _?=$R0' $R1
    ${If} ${Errors}
    ${OrIf} $R1 <> 0
        !insertmacro GIVE_UP "$(OlderNotRemoved)" 5
    ${EndIf}
    Delete "$R0\uninstall.exe"
    RMDir "$R0"
FunctionEnd

Function Register
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${PROGRAM}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "SINAR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "URLInfoAbout" "${WEB_URL}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "SetupLanguage" "$LANGUAGE"
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

Section "${NAME}" SecProgram
    SectionIn RO
    Call SelectDesktopIcon
    Call CloseProgram
    Call RemoveOlder
    ClearErrors
    !include "${LISTS}\install.nsh"
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    ${If} $hadDesktopIcon == yes
        CreateShortcut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    ${EndIf}
    Call Register
    ${If} ${Errors}
        !insertmacro GIVE_UP "$(NotWritten)" 2
    ${EndIf}
SectionEnd

Section /o "$(DesktopIcon)" SecDesktopIcon
    CreateShortcut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SecProgram} "$(ProgramDescription)"
    !insertmacro MUI_DESCRIPTION_TEXT ${SecDesktopIcon} "$(DesktopIconDescription)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; ---- Uninstalling ----------------------------------------------------------------------------------------------------

Function un.onInit
    !insertmacro MULTIUSER_UNINIT
    !insertmacro MUI_UNGETLANGUAGE
FunctionEnd

; The start with Windows and the firewall's rules, which the program has made itself.
Function un.ForgetProgram
    ReadRegStr $R0 HKCU "${RUN_KEY}" "${RUN_VALUE}"
    ${If} $R0 == "$INSTDIR\${PROGRAM}"
        DeleteRegValue HKCU "${RUN_KEY}" "${RUN_VALUE}"
    ${EndIf}
    nsExec::Exec 'netsh advfirewall firewall delete rule name="${FIREWALL_RULE}" program="$INSTDIR\${PROGRAM}"'
    Pop $R0 ; without the right to do so, or without a rule, there is nothing to be done
FunctionEnd

Function un.AskForSettings
    SetShellVarContext current
    ${If} ${FileExists} "${SETTINGS}\*"
        MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(DeleteSettings)" /SD IDNO IDNO kept
        RMDir /r "${SETTINGS}"
        RMDir "$APPDATA\SINAR"
    kept:
    ${EndIf}
FunctionEnd

Section "Uninstall"
    ${un.GetParameters} $R0
    ClearErrors
    ${un.GetOptions} $R0 "/UPGRADE" $R1
    ${If} ${Errors}
        StrCpy $R9 ""
    ${Else}
        StrCpy $R9 upgrade
    ${EndIf}
    Call un.CloseProgram
    !include "${LISTS}\remove.nsh"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$DESKTOP\${NAME}.lnk"
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    ${If} $R9 != upgrade
        Call un.ForgetProgram
        Call un.AskForSettings
    ${EndIf}
SectionEnd
