target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/host_object.cpp
    ${CMAKE_CURRENT_LIST_DIR}/journal.cpp
    ${CMAKE_CURRENT_LIST_DIR}/kernel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/loader.cpp
    ${CMAKE_CURRENT_LIST_DIR}/memory_query.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pool.cpp
    ${CMAKE_CURRENT_LIST_DIR}/region_cache.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tracker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/wide_format.cpp)
