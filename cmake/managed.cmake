# The C# library, its tests, its examples and its benchmark, with the compiler and the runtime of Mono.
# Sanitized libraries do not load into Mono, which is no instrumented program.
find_program(mcs_program mcs)
find_program(mono_program mono)
if(NOT mcs_program OR NOT mono_program)
  message(STATUS "Mono was not found: the C# library is left out")
  return()
endif()
if(QUVEX_SANITIZE)
  return()
endif()

set(managed_dir "${PROJECT_BINARY_DIR}/managed")
set(mcs_command "${mcs_program}" -nologo -langversion:7.2 -optimize+ -warn:4 -warnaserror+)
file(MAKE_DIRECTORY "${managed_dir}")

# The documentation file makes the compiler check that everything public has a comment.
set(managed_library "${managed_dir}/QuvexNet.dll")
file(GLOB managed_sources CONFIGURE_DEPENDS wrappers/csharp/managed/*.cs)
add_custom_command(
  OUTPUT "${managed_library}" "${managed_dir}/QuvexNet.xml"
  COMMAND ${mcs_command} -target:library "-out:${managed_library}" "-doc:${managed_dir}/QuvexNet.xml" ${managed_sources}
  DEPENDS ${managed_sources}
  VERBATIM)
add_custom_target(managed_library DEPENDS "${managed_library}")

# add_managed_program(name sources...): a program over the library, as the target managed_<name>.
function(add_managed_program name)
  set(program "${managed_dir}/${name}.exe")
  add_custom_command(
    OUTPUT "${program}"
    COMMAND ${mcs_command} "-out:${program}" "-r:${managed_library}" -r:System.Core.dll ${ARGN}
    DEPENDS ${ARGN} "${managed_library}"
    VERBATIM)
  add_custom_target(managed_${name} ${managed_all} DEPENDS "${program}")
  add_dependencies(managed_${name} managed_library quvexnativenet)
endfunction()

# How to run one: the loader finds the native library by its folder.
set(run_managed "${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=$<TARGET_FILE_DIR:quvexnativenet>" "${mono_program}")

set(managed_all "")
if(QUVEX_TESTS)
  set(managed_all ALL)
  file(GLOB test_sources CONFIGURE_DEPENDS tests/managed/*.cs)
  add_managed_program(QuvexNet.Tests ${test_sources})
  set(work_dir "${PROJECT_BINARY_DIR}/tests/scratch/managed")
  file(MAKE_DIRECTORY "${work_dir}")
  file(GLOB test_classes CONFIGURE_DEPENDS tests/managed/*Tests.cs)
  foreach(source IN LISTS test_classes)
    cmake_path(GET source STEM name)
    add_test(NAME managed/${name} COMMAND ${run_managed} "${managed_dir}/QuvexNet.Tests.exe" ${name}
             WORKING_DIRECTORY "${work_dir}")
    set_tests_properties(managed/${name} PROPERTIES LABELS managed)
  endforeach()
endif()

# examples/csharp/support/ holds what the examples share.
set(managed_all "")
if(QUVEX_EXAMPLES)
  set(managed_all ALL)
endif()
file(GLOB example_support CONFIGURE_DEPENDS examples/csharp/support/*.cs)
file(GLOB example_sources CONFIGURE_DEPENDS examples/csharp/*.cs)
foreach(source IN LISTS example_sources)
  cmake_path(GET source STEM name)
  add_managed_program(${name} ${source} ${example_support})
  if(QUVEX_EXAMPLES AND QUVEX_TESTS)
    add_test(NAME examples/csharp/${name} COMMAND ${run_managed} "${managed_dir}/${name}.exe" 3000)
  endif()
endforeach()

set(managed_all "")
if(QUVEX_BENCH)
  set(managed_all ALL)
endif()
file(GLOB bench_sources CONFIGURE_DEPENDS bench/csharp/*.cs)
foreach(source IN LISTS bench_sources)
  cmake_path(GET source STEM name)
  add_managed_program(${name} ${source})
  if(QUVEX_BENCH AND QUVEX_TESTS)
    add_test(NAME bench/csharp/${name} COMMAND ${run_managed} "${managed_dir}/${name}.exe" 3000)
  endif()
endforeach()
