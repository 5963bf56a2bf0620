# One Google Benchmark program per source in bench/, named after it.
file(GLOB bench_sources CONFIGURE_DEPENDS bench/*.cpp)
if(bench_sources)
  find_package(benchmark REQUIRED)
endif()
foreach(source IN LISTS bench_sources)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bench")
  target_include_directories(${name} PRIVATE bench tests)
  target_link_libraries(${name} PRIVATE quvex::quvex quvex_options benchmark::benchmark benchmark::benchmark_main)
endforeach()

# Calls the same methods directly and through the shared library.
target_include_directories(binding_bench PRIVATE "${PROJECT_SOURCE_DIR}")
target_link_libraries(binding_bench PRIVATE quvexnativenet)

# Each runs for a moment on its small sizes, so that none rots; the same-path checks compare the engine with the
# hand-written searches.
if(QUVEX_TESTS)
  set(iteration_bench_filter "samePathCheck|/1000$")
  set(protocol_bench_filter "/1000/1$")
  set(node_bench_filter "/64$")
  set(move_bench_filter "covering/1000/")
  set(model_bench_filter "/10000$")
  set(binding_bench_filter ".")
  foreach(source IN LISTS bench_sources)
    cmake_path(GET source STEM name)
    add_test(NAME bench/${name} COMMAND ${name} "--benchmark_filter=${${name}_filter}" --benchmark_min_time=0.001)
    set_tests_properties(bench/${name} PROPERTIES FAIL_REGULAR_EXPRESSION "ERROR OCCURRED;Failed to match" LABELS bench)
  endforeach()
endif()

# What solves the instances of bench/instances.py.
find_package(nlohmann_json REQUIRED)
add_executable(instance_run bench/tools/instance_run.cpp)
set_target_properties(instance_run PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bench")
target_include_directories(instance_run PRIVATE tests)
target_link_libraries(instance_run PRIVATE quvex::quvex quvex_options nlohmann_json::nlohmann_json)
