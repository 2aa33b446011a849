# Benchmarks of the archive check and find in files. They print figures and
# never fail a build on time. Include from bench/CMakeLists.txt: include(find.cmake)
foreach(name bench_check bench_findin)
  add_executable(${name} ${CMAKE_CURRENT_LIST_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE korvel_test_support)
endforeach()
