# The models, which tests and fuzzers run. They bring the builder's own sources, so that its system calls can be made to
# fail.
include_guard(GLOBAL)
set(builder ${PROJECT_SOURCE_DIR}/index_builder)
file(GLOB models ${CMAKE_CURRENT_LIST_DIR}/*_model.cpp)
add_library(models OBJECT ${models} ${CMAKE_CURRENT_LIST_DIR}/Trial.cpp
  ${builder}/Index_reader.cpp ${builder}/main.cpp)
set_source_files_properties(${builder}/main.cpp PROPERTIES COMPILE_DEFINITIONS main=kindex_main)
target_link_libraries(models PUBLIC kindex::text)
