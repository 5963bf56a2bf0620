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

# add_readme_tests(name texts command...): the command succeeds, and its output contains each of the texts. Those are
# tests of their own, since a test that looks for a text does not look at how the command ends.
function(add_readme_tests name texts)
  add_test(NAME readme/${name} COMMAND ${ARGN})
  set_tests_properties(readme/${name} PROPERTIES LABELS readme)
  set(number 0)
  foreach(text IN LISTS texts)
    math(EXPR number "${number} + 1")
    string(REGEX REPLACE "([][+.*()^$?|\\])" "\\\\\\1" pattern "${text}")
    add_test(NAME readme/${name}_prints_${number} COMMAND ${ARGN})
    set_tests_properties(readme/${name}_prints_${number} PROPERTIES PASS_REGULAR_EXPRESSION "${pattern}" LABELS readme)
  endforeach()
endfunction()

readme_block("```" "[0 sec" shown)
string(REGEX MATCH "obj = [^\n]*" shown_progress "${shown}")
string(REGEX MATCH "value [^\n]*" shown_result "${shown}")

readme_block("```cpp" "#include" block)
file(CONFIGURE OUTPUT "${readme_dir}/program.cpp" CONTENT "${block}" @ONLY)
add_executable(readme_program "${readme_dir}/program.cpp")
target_link_libraries(readme_program PRIVATE quvex::quvex quvex_options)
add_readme_tests(cpp "${shown_progress};${shown_result}" readme_program)

if(COMMAND add_managed_program)
  readme_block("```csharp" "using" block)
  file(CONFIGURE OUTPUT "${readme_dir}/Program.cs" CONTENT "${block}" @ONLY)
  set(managed_all ALL)
  add_managed_program(ReadmeProgram "${readme_dir}/Program.cs")
  add_readme_tests(csharp "${shown_result}" ${run_managed} "${managed_dir}/ReadmeProgram.exe")
endif()

if(QUVEX_CLI)
  readme_block("```" "<QVM01>" block)
  file(CONFIGURE OUTPUT "${readme_dir}/model.qvm" CONTENT "${block}" @ONLY)
  # 3x + y, where x or y must hold.
  add_readme_tests(model "objective 0: 1 (minimize)" quvex_cli solve -q "${readme_dir}/model.qvm")
endif()
