# The models, which tests and fuzzers run.
include_guard(GLOBAL)
file(GLOB models ${CMAKE_CURRENT_LIST_DIR}/*_model.cpp)
add_library(models OBJECT ${models} ${CMAKE_CURRENT_LIST_DIR}/Trial.cpp)
target_link_libraries(models PUBLIC kindex::text)
