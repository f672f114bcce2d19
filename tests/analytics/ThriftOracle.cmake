# Apache Thrift's own C++ code for the analytics records, generated at build time from the IDL
# in data/, as an independent oracle for tests and benchmarks. Never linked into the product.
find_package(PkgConfig REQUIRED)
pkg_check_modules(THRIFT REQUIRED IMPORTED_TARGET thrift)
find_program(THRIFT_COMPILER thrift REQUIRED)

if(NOT TARGET quorvel_analytics_thrift_oracle)
  set(oracle_idl ${CMAKE_CURRENT_LIST_DIR}/data/analytics.thrift)
  set(oracle_dir ${CMAKE_BINARY_DIR}/analytics_thrift_oracle)
  add_custom_command(
    OUTPUT ${oracle_dir}/analytics_types.cpp ${oracle_dir}/analytics_types.h
    COMMAND ${CMAKE_COMMAND} -E make_directory ${oracle_dir}
    COMMAND ${THRIFT_COMPILER} --gen cpp -out ${oracle_dir} ${oracle_idl}
    DEPENDS ${oracle_idl}
    COMMENT "Generating Apache Thrift oracle code for the analytics records")
  add_library(quorvel_analytics_thrift_oracle STATIC ${oracle_dir}/analytics_types.cpp)
  target_include_directories(quorvel_analytics_thrift_oracle SYSTEM PUBLIC ${oracle_dir})
  target_link_libraries(quorvel_analytics_thrift_oracle PUBLIC PkgConfig::THRIFT)
  # Generated code is not ours to keep warning-free.
  target_compile_options(quorvel_analytics_thrift_oracle PRIVATE -w)
  set_target_properties(quorvel_analytics_thrift_oracle PROPERTIES AUTOMOC OFF)
endif()
