; What the setup says beside its own texts, in Indonesian and English.

!macro TEXT NAME INDONESIAN ENGLISH
    LangString ${NAME} ${LANG_INDONESIAN} "${INDONESIAN}"
    LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
!macroend

!insertmacro TEXT RunProgram "Jalankan ${NAME}" "Start ${NAME}"
!insertmacro TEXT ProgramDescription "Program gateway radio." "The radio gateway program."
!insertmacro TEXT DesktopIcon "Ikon di desktop" "Desktop icon"
!insertmacro TEXT DesktopIconDescription "Membuat ikon ${NAME} di desktop." "Puts an icon of ${NAME} on the desktop."
!insertmacro TEXT RemovingOlder "Menghapus versi sebelumnya ..." "Removing the older version ..."
!insertmacro TEXT ClosingProgram "Menutup ${NAME} ..." "Closing ${NAME} ..."
!insertmacro TEXT ProgramRuns \
    "${NAME} masih berjalan. Tutup program itu, lalu coba lagi." \
    "${NAME} is still running. Close it, then try again."
!insertmacro TEXT WindowsTooOld \
    "${NAME} memerlukan Windows 7 SP1 (64-bit) atau yang lebih baru." \
    "${NAME} needs Windows 7 SP1 (64-bit) or newer."
!insertmacro TEXT NotAnAdministrator \
    "Hanya administrator yang dapat memasang ${NAME} untuk semua pengguna komputer ini." \
    "Only an administrator can install ${NAME} for all users of this computer."
!insertmacro TEXT OlderNotRemoved \
    "Versi ${NAME} sebelumnya tidak dapat dihapus." \
    "The older version of ${NAME} could not be removed."
!insertmacro TEXT NotWritten \
    "${NAME} tidak dapat dipasang dengan lengkap." \
    "${NAME} could not be installed completely."
!insertmacro TEXT DeleteSettings \
    "Hapus juga pengaturan ${NAME} (akun, radio dan catatan program)?" \
    "Delete the settings of ${NAME} (account, radio and logs) too?"
