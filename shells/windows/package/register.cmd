@echo off
rem Registers Marnoth.dll where it lies, so that hosts find the instrument; /u takes it out of the registry again. Windows
rem is asked for an administrator's rights where they are missing. With /quiet nobody waits for a key at the end. The exit
rem status is 0 once the instrument is registered, or no longer is.
setlocal DisableDelayedExpansion
if exist "%SystemRoot%\Sysnative\cmd.exe" goto as64bit
set "MARNOTH_DLL=%~dp0Marnoth.dll"
set "MARNOTH_TOOL=%SystemRoot%\System32\regsvr32.exe"
set "MARNOTH_SHELL=%SystemRoot%\System32\WindowsPowerShell\v1.0\powershell.exe"
set "MARNOTH_WORDS=/s"
set "MARNOTH_FAILED=Marnoth isn't registered."
set "MARNOTH_DONE=Marnoth is registered. If you move this folder, register it again."
set "MARNOTH_WAIT=yes"

:word
if "%~1"=="" goto begin
if /i "%~1"=="/quiet" set "MARNOTH_WAIT="
if /i "%~1"=="/u" set "MARNOTH_WORDS=/s /u"
if /i "%~1"=="/u" set "MARNOTH_FAILED=Marnoth is still registered."
if /i "%~1"=="/u" set "MARNOTH_DONE=Marnoth isn't registered any more. You may delete this folder."
shift
goto word

:begin
if not exist "%MARNOTH_DLL%" goto missing
"%MARNOTH_TOOL%" %MARNOTH_WORDS% "%MARNOTH_DLL%"
set "MARNOTH_STATUS=%ERRORLEVEL%"
if "%MARNOTH_STATUS%"=="5" call :elevated
if "%MARNOTH_STATUS%"=="0" goto done
echo %MARNOTH_FAILED%
if "%MARNOTH_STATUS%"=="3" echo Marnoth.dll can't be loaded. It needs a 64-bit Windows, and has to be whole: unpack the package again.
if "%MARNOTH_STATUS%"=="5" echo The registry refuses it, even with an administrator's rights.
if "%MARNOTH_STATUS%"=="1223" echo It needs an administrator's rights, and they were refused.
if "%MARNOTH_STATUS%"=="9009" echo There is no PowerShell to ask for an administrator's rights. Right-click this file: "Run as administrator".
echo regsvr32 ended with %MARNOTH_STATUS%.
goto end

rem Of regsvr32's ends 5 is the one where the file was loaded and its own registration failed.
:elevated
echo This needs an administrator's rights. Windows will ask for them.
set "MARNOTH_STATUS=9009"
if not exist "%MARNOTH_SHELL%" exit /b
"%MARNOTH_SHELL%" -NoProfile -Command "try { exit (Start-Process -FilePath $env:MARNOTH_TOOL -ArgumentList ($env:MARNOTH_WORDS + ' ' + [char]34 + $env:MARNOTH_DLL + [char]34) -Verb RunAs -Wait -PassThru).ExitCode } catch { exit 1223 }"
set "MARNOTH_STATUS=%ERRORLEVEL%"
exit /b

:done
echo %MARNOTH_DONE%
goto end

:missing
set "MARNOTH_STATUS=2"
echo %MARNOTH_FAILED%
echo There is no Marnoth.dll beside this file. Unpack the whole package into a folder, and start this file there.

:end
if defined MARNOTH_WAIT pause
exit /b %MARNOTH_STATUS%

rem A 32-bit command prompt has the 64-bit one here.
:as64bit
"%SystemRoot%\Sysnative\cmd.exe" /d /c ""%~f0" %*"
exit /b %ERRORLEVEL%
