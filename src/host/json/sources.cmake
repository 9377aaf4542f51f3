target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/module.cpp
    ${CMAKE_CURRENT_LIST_DIR}/parser.cpp
    ${CMAKE_CURRENT_LIST_DIR}/parser_loop.cpp
    ${CMAKE_CURRENT_LIST_DIR}/parser_string.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scan_routines.cpp
    ${CMAKE_CURRENT_LIST_DIR}/json_text.cpp
    ${CMAKE_CURRENT_LIST_DIR}/writer.cpp)
