# cmake -P script: every name that LIBRARY exports must belong to the YXTools interface, and the
# plain functions must be there under their undecorated names.
#   -DLIBRARY=...               the shared object (read with nm -D) or, with OBJDUMP, the DLL
#   -DOBJDUMP=...               objdump for the DLL's format: its export table is read instead
#   -DCXXFILT=...               the demangler (default c++filt)
cmake_minimum_required(VERSION 3.25)
if(NOT CXXFILT)
  set(CXXFILT c++filt)
endif()

if(OBJDUMP)
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE listing RESULT_VARIABLE status)
  # The name table of the exports lists one name a line: "<tab>[   4] _Z12YXTools_Initv".
  string(REGEX REPLACE ".*\\[Ordinal/Name Pointer\\] Table\n" "" listing "${listing}")
  string(REGEX REPLACE "\n\n.*" "" listing "${listing}")
  string(REGEX MATCHALL "\t\\[ *[0-9]+\\] [^\n]+" entries "${listing}")
  list(TRANSFORM entries REPLACE "^\t\\[ *[0-9]+\\] " "")
else()
  execute_process(COMMAND nm -D --defined-only ${LIBRARY} OUTPUT_VARIABLE listing RESULT_VARIABLE status)
  string(REGEX MATCHALL "[^\n]+" entries "${listing}")
  list(TRANSFORM entries REPLACE "^[0-9a-fA-F]* +[A-Za-z] +" "")
endif()
if(NOT status EQUAL 0)
  message(FATAL_ERROR "cannot read the exported names of ${LIBRARY}")
endif()
list(LENGTH entries count)
if(count LESS 10)
  message(FATAL_ERROR "only ${count} names exported: the interface is missing")
endif()

# Plain functions (extern "C") are exported as they are called, without C++ decoration; each
# family that adds one lists it here.
set(plain YXNameProvider_RegisterProviderByString YXNameProvider_GetProviderByString
  YXNameProvider_RegisterProviderByID YXNameProvider_GetProviderByID
  CreateHoleManager DestroyHoleManager
  YXHugePtr_Allocate YXHugePtr_ReAllocate YXHugePtr_Lock YXHugePtr_Unlock YXHugePtr_Free YXHugePtr_Size
  YXHugePtr_GetHandle YXHugePtr_Flags YXHugePtr_Duplicate YXHugePtr_FromBuffer YXHugePtr_ToBuffer)
set(missing "")
foreach(name IN LISTS plain)
  if(NOT name IN_LIST entries)
    string(APPEND missing "  ${name}\n")
  endif()
endforeach()
if(NOT missing STREQUAL "")
  message(FATAL_ERROR "plain functions not exported under their own names:\n${missing}")
endif()

execute_process(COMMAND ${CXXFILT} ${entries} OUTPUT_VARIABLE demangled RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${CXXFILT} failed")
endif()
string(REGEX MATCHALL "[^\n]+" names "${demangled}")
# Members and functions that the headers define inline, for a host's compiler to inline: the
# library exports its own copies all the same.
set(inline_defined
  "YXBitArray::operator[](unsigned long) const"
  "YXBitArray::SetValue(unsigned long, bool)"
  "YXDate_DateToGregorian(DISKDATE const&)"
  "YXDate_DateToGregorian(unsigned short, unsigned short, unsigned short)"
  "YXDate_GregorianToDate(long, DISKDATE&)"
  "YXDate_GregorianToDate(long, DISKDATETIME&)")
foreach(name IN LISTS inline_defined)
  if(NOT name IN_LIST names)
    string(APPEND missing "  ${name}\n")
  endif()
endforeach()
if(NOT missing STREQUAL "")
  message(FATAL_ERROR "functions defined inline in the headers but not exported:\n${missing}")
endif()

set(allowed "^(YX|_SS<|IsWin9XVersion|String_|StringCopy|File_|Path_|CreateHoleManager|DestroyHoleManager|(vtable|typeinfo|typeinfo name|VTT) for YX)")
set(foreign "")
foreach(name IN LISTS names)
  if(NOT name MATCHES "${allowed}")
    string(APPEND foreign "  ${name}\n")
  endif()
endforeach()
if(NOT foreign STREQUAL "")
  message(FATAL_ERROR "names outside the YXTools interface:\n${foreign}")
endif()
message(STATUS "${count} exported names, all of the YXTools interface")
