# One target per folder, all with the same warnings and, if asked for, the same sanitizers.

add_library(vantorix_options INTERFACE)
# g++ 12 sees overlaps in inlined string sums that are none (GCC bug 105651).
target_compile_options(vantorix_options INTERFACE -Wall -Wextra $<$<BOOL:${VANTORIX_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(vantorix_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(vantorix_options INTERFACE VANTORIX_VERSION="${PROJECT_VERSION}")
# The system's own linker takes several times as long for programs with sanitizers.
find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM)
  target_link_options(vantorix_options INTERFACE -fuse-ld=lld)
endif()
# A function that has written behind its own end is stopped, and so are a jump to where nothing begins, a copy beyond
# what is known to fit, and a stack that leaps over its guard. Nothing of it is for the sanitizers, which see more.
# tools/check-hardening.sh looks at what can be seen of it.
set(hardened "$<AND:$<CONFIG:Release,RelWithDebInfo,MinSizeRel>,$<NOT:$<BOOL:${VANTORIX_SANITIZE}>>>")
include(CheckCXXCompilerFlag)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER "HAS${flag}" has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    target_compile_options(vantorix_options INTERFACE $<${hardened}:${flag}>)
  endif()
endforeach()
target_compile_options(vantorix_options INTERFACE "$<${hardened}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
# Where things lie is settled before a program runs, and read-only from then on.
target_link_options(vantorix_options INTERFACE $<${hardened}:-Wl,-z,relro,-z,now,-z,noexecstack>)
if(VANTORIX_SANITIZE)
  target_compile_options(vantorix_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    # What a wrong address does is seen by the first sanitizer; these checks of the second double g++'s time.
    $<$<CXX_COMPILER_ID:GNU>:-fno-sanitize=null,alignment,object-size,vptr>)
  target_link_options(vantorix_options INTERFACE -fsanitize=address,undefined)
endif()
if(VANTORIX_FUZZ)
  target_compile_options(vantorix_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# vantorix_library(name SOURCES file... LINKS target...): a static library of one folder.
function(vantorix_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC vantorix_options ${ARG_LINKS})
endfunction()

# vantorix_program(name SOURCES file... LINKS target...): a program in bin/.
function(vantorix_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE vantorix_options ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

# vantorix_test(name SOURCES file... LINKS target... [TIMEOUT seconds]): a GoogleTest program whose cases CTest
# lists one by one and runs side by side: each makes its own folders, bus, screen and ports.
function(vantorix_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE vantorix_options ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()

# vantorix_bench(name SOURCES file... LINKS target...): a Google Benchmark program in bin/.
function(vantorix_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  vantorix_program(${name} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} benchmark::benchmark)
endfunction()

# vantorix_fuzz(name SOURCES file... LINKS target...): a libFuzzer program in bin/.
function(vantorix_fuzz name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  if(VANTORIX_FUZZ)
    vantorix_program(${name} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  endif()
endfunction()

# vantorix_add_folders(): every folder below this one that has a list of its own.
function(vantorix_add_folders)
  file(GLOB_RECURSE lists CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt)
  list(REMOVE_ITEM lists ${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt)
  foreach(list IN LISTS lists)
    get_filename_component(folder ${list} DIRECTORY)
    add_subdirectory(${folder})
  endforeach()
endfunction()
