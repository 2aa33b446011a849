# Benchmarks of the entry commands. They print figures and never fail a build
# on time. Include from bench/CMakeLists.txt: include(entries.cmake)
foreach(name bench_rebuild bench_extract bench_add bench_one_file)
  add_executable(${name} ${CMAKE_CURRENT_LIST_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE korvel_test_support)
endforeach()
