; The installer for Windows, made by make-installer.py: it defines VERSION, FOLDER, LIST and INSTALLER.
;
; It installs for the user who runs it, so nobody asks for an administrator. Uninstalling takes away what was installed
; and leaves whatever else has come into the folder.
Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
SetDateSave off
!include MUI2.nsh
!include "${LIST}"

Name "Vistrel ${VERSION}"
OutFile "${INSTALLER}"
InstallDir "$LOCALAPPDATA\Programs\Vistrel"
InstallDirRegKey HKCU "Software\Vistrel" "Folder"
RequestExecutionLevel user
BrandingText " "
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Vistrel"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Installs Vistrel, a previewer of a player's on-screen interface"
VIAddVersionKey "LegalCopyright" "The Vistrel developers"

!define MUI_ICON "vistrel.ico"
!define MUI_UNICON "${MUI_ICON}"
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\README.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Vistrel"

Section
  !insertmacro INSTALL_FILES
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKCU "Software\Vistrel" "Folder" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Vistrel"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\vistrel.exe"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
  SetOutPath "$INSTDIR\demo"  ; where the previewer's dialog begins
  CreateShortcut "$SMPROGRAMS\Vistrel.lnk" "$INSTDIR\vistrel.exe"
SectionEnd

Section "Uninstall"
  SetOutPath "$TEMP"  ; a folder that somebody is in can't go
  Delete "$SMPROGRAMS\Vistrel.lnk"
  DeleteRegKey HKCU "${UNINSTALL}"
  DeleteRegKey HKCU "Software\Vistrel"
  Delete "$INSTDIR\uninstall.exe"
  !insertmacro REMOVE_FILES
SectionEnd
