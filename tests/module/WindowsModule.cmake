# The six names without decoration, and no library that isn't in every Windows.
#   cmake -DMODULE=file -DOBJDUMP=program -P WindowsModule.cmake
execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)

string(REGEX REPLACE ".*\n\\[Ordinal/Name Pointer\\] Table[^\n]*\n(([^\n]+\n)*).*" "\\1" table "${text}")
string(REGEX REPLACE "[ \t]*\\[ *[0-9]+\\]( \\+base\\[ *[0-9]+\\]( +[0-9a-f]+)?)? " "" names "${table}")
set(expected MCDllCanUnloadNow MCDllCleanUp MCDllCleanUpExceptionTranslator MCDllGetClassObject MCDllInit
    MCDllInitExceptionTranslator)
list(JOIN expected "\n" expected)
string(STRIP "${names}" names)
if(NOT names STREQUAL expected)
    message(FATAL_ERROR "exported:\n${names}\nexpected:\n${expected}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" libraries "${text}")
list(TRANSFORM libraries REPLACE "DLL Name: " "")
list(SORT libraries CASE INSENSITIVE)
if(NOT "${libraries}" STREQUAL "KERNEL32.dll;msvcrt.dll")
    message(FATAL_ERROR "needs ${libraries}")
endif()
