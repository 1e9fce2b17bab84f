# Peer: protobuf (libprotobuf-dev, protobuf-compiler).
find_package(Protobuf REQUIRED)
protobuf_generate_cpp(ROW_PROTO_SOURCES ROW_PROTO_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/row.proto)
target_sources(row_bench PRIVATE ${ROW_PROTO_SOURCES})
target_include_directories(row_bench PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
target_link_libraries(row_bench PRIVATE protobuf::libprotobuf)
