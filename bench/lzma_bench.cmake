# liblzma's header bears the name of ours, so ours is reached through a file of
# its own that does not see liblzma's, and the benchmark itself does not see the
# library's folder.
target_sources(lzma_bench PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/oakbase_lzma.cpp)
target_link_libraries(lzma_bench PRIVATE lzma)
