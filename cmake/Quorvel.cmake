# Shared build helpers for every component folder.

# The component folders to build; a subset can be chosen at configure time.
set(QUORVEL_COMPONENTS platform ui records service server analytics push topic home compose app tools
    CACHE STRING "Component folders to build")

# Adds those of the given sub-folders that hold a CMakeLists.txt, so a component can be
# added or dropped without touching the parent.
function(quorvel_add_present_subdirectories)
  foreach(dir ${ARGN})
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/CMakeLists.txt)
      add_subdirectory(${dir})
    endif()
  endforeach()
endfunction()

# quorvel_add_test(NAME name SOURCES a.cpp ... LIBS lib ... [LABELS l ...])
# One GoogleTest executable run by CTest, headless, with its own temporary XDG folders
# (the test main makes them), so no test sees the user's real settings or caches.
function(quorvel_add_test)
  cmake_parse_arguments(T "" "NAME;TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE quorvel_testsupport ${T_LIBS})
  add_test(NAME ${T_NAME} COMMAND ${T_NAME})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  set_tests_properties(${T_NAME} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
    TIMEOUT ${T_TIMEOUT}
    LABELS "${T_LABELS}")
endfunction()

# quorvel_add_benchmark(NAME name SOURCES a.cpp ... LIBS lib ...)
function(quorvel_add_benchmark)
  cmake_parse_arguments(B "" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${B_NAME} ${B_SOURCES})
  target_include_directories(${B_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/bench/support)
  target_link_libraries(${B_NAME} PRIVATE benchmark::benchmark ${B_LIBS})
endfunction()

# quorvel_add_fuzzer(NAME name SOURCES a.cpp ... LIBS lib ...)
function(quorvel_add_fuzzer)
  cmake_parse_arguments(F "" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${F_NAME} ${F_SOURCES})
  target_link_options(${F_NAME} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${F_NAME} PRIVATE ${F_LIBS})
endfunction()
