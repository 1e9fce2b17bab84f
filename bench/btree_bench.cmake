find_package(absl REQUIRED)
target_link_libraries(btree_bench PRIVATE absl::btree)
