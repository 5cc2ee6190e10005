@echo off
rem Runs the test programs beside this file, or those that are named: run-tests [NAME ...]
rem Each one's output goes into results\NAME.txt. The exit status is the number of programs that failed, 255 if none ran.
setlocal DisableDelayedExpansion
pushd "%~dp0"
set "MARNOTH_TEST_DATA=%~dp0data"
set "RUN=0"
set "FAILED=0"
if not exist results mkdir results

if not "%~1"=="" goto named
for %%t in (*.exe) do call :run "%%~nt"
goto end

:named
call :run "%~1"
shift
if not "%~1"=="" goto named

:end
popd
echo Programs that were run: %RUN%, of which failed: %FAILED%
if "%RUN%"=="0" exit /b 255
exit /b %FAILED%

:run
set /a RUN+=1
".\%~1.exe" --gtest_brief=1 >"results\%~1.txt" 2>&1
if errorlevel 1 goto failed
if not errorlevel 0 goto failed
echo passed  %~1
exit /b

:failed
echo FAILED  %~1: results\%~1.txt
set /a FAILED+=1
exit /b
