# One program per source in examples/, named after it; examples/support/ holds what they share.
file(GLOB example_sources CONFIGURE_DEPENDS examples/*.cpp)
foreach(source IN LISTS example_sources)
  cmake_path(GET source STEM name)
  add_executable(example_${name} ${source})
  set_target_properties(example_${name} PROPERTIES OUTPUT_NAME ${name}
                                                   RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/examples")
  target_include_directories(example_${name} PRIVATE examples)
  target_link_libraries(example_${name} PRIVATE quvex::quvex quvex_options)
endforeach()

# Each example checks its own answer from its data.
if(QUVEX_TESTS)
  foreach(source IN LISTS example_sources)
    cmake_path(GET source STEM name)
    add_test(NAME examples/${name} COMMAND example_${name} 3000)
  endforeach()
endif()
