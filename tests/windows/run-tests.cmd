@echo off
rem Runs the test programs beside this file, or those that are named: run-tests [NAME ...]
rem Each one's output goes into results\NAME.txt. The exit status is the number of programs that failed.
setlocal DisableDelayedExpansion
set "MARNOTH_TEST_DATA=%~dp0data"
set "RESULTS=%~dp0results"
set "FAILED=0"
if not exist "%RESULTS%" mkdir "%RESULTS%"

if not "%~1"=="" goto named
for %%t in ("%~dp0*_tests.exe") do call :run "%%~nt"
goto end

:named
call :run "%~1"
shift
if not "%~1"=="" goto named

:end
echo Programs that failed: %FAILED%
exit /b %FAILED%

:run
"%~dp0%~1.exe" --gtest_brief=1 >"%RESULTS%\%~1.txt" 2>&1
if errorlevel 1 goto failed
if not errorlevel 0 goto failed
echo passed  %~1
exit /b

:failed
echo FAILED  %~1: results\%~1.txt
set /a FAILED+=1
exit /b
