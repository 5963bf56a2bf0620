# What the README shows is compiled, run and read as it stands there, and prints what the README says.
set(readme "${PROJECT_SOURCE_DIR}/README.md")
set(readme_dir "${PROJECT_BINARY_DIR}/readme")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${readme}")
file(READ "${readme}" readme_text)

# readme_block(fence first result): the block between a fence, such as ```cpp, and the next, whose first line begins so.
function(readme_block fence first result)
  string(FIND "${readme_text}" "${fence}\n${first}" start)
  if(start EQUAL -1)
    message(FATAL_ERROR "README.md has no block ${fence} that begins with ${first}")
  endif()
  string(LENGTH "${fence}\n" skip)
  math(EXPR start "${start} + ${skip}")
  string(SUBSTRING "${readme_text}" ${start} -1 rest)
  string(FIND "${rest}" "\n```" end)
  string(SUBSTRING "${rest}" 0 ${end} block)
  set(${result} "${block}\n" PARENT_SCOPE)
endfunction()

# expect_of_readme(test text): the output of the test has to contain the text.
function(expect_of_readme test text)
  string(REGEX REPLACE "([][+.*()^$?|\\])" "\\\\\\1" pattern "${text}")
  set_tests_properties(${test} PROPERTIES PASS_REGULAR_EXPRESSION "${pattern}" LABELS readme)
endfunction()

readme_block("```" "[0 sec" shown)
string(REGEX MATCH "obj = [^\n]*" shown_progress "${shown}")
string(REGEX MATCH "value [^\n]*" shown_result "${shown}")

readme_block("```cpp" "#include" block)
file(CONFIGURE OUTPUT "${readme_dir}/program.cpp" CONTENT "${block}" @ONLY)
add_executable(readme_program "${readme_dir}/program.cpp")
target_link_libraries(readme_program PRIVATE quvex::quvex quvex_options)
foreach(what IN ITEMS progress result)
  add_test(NAME readme/cpp_${what} COMMAND readme_program)
  expect_of_readme(readme/cpp_${what} "${shown_${what}}")
endforeach()

if(COMMAND add_managed_program)
  readme_block("```csharp" "using" block)
  file(CONFIGURE OUTPUT "${readme_dir}/Program.cs" CONTENT "${block}" @ONLY)
  set(managed_all ALL)
  add_managed_program(ReadmeProgram "${readme_dir}/Program.cs")
  add_test(NAME readme/csharp COMMAND ${run_managed} "${managed_dir}/ReadmeProgram.exe")
  expect_of_readme(readme/csharp "${shown_result}")
endif()

if(QUVEX_CLI)
  readme_block("```" "<QVM01>" block)
  file(CONFIGURE OUTPUT "${readme_dir}/model.qvm" CONTENT "${block}" @ONLY)
  add_test(NAME readme/model COMMAND quvex_cli solve -q "${readme_dir}/model.qvm")
  expect_of_readme(readme/model "objective 0: 1 (minimize)")  # 3x + y, where x or y must hold
endif()
