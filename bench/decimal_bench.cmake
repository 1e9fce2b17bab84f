# Peers: libpgtypes (libecpg-dev) and Boost.Multiprecision (libboost-dev).
pkg_check_modules(PGTYPES REQUIRED libpgtypes)
target_include_directories(decimal_bench SYSTEM PRIVATE ${PGTYPES_INCLUDE_DIRS})
target_link_libraries(decimal_bench PRIVATE ${PGTYPES_LINK_LIBRARIES})
