@echo off
rem Takes Marnoth.dll out of the registry again. Do so before you delete the folder.
"%~dp0register.cmd" /u %*
