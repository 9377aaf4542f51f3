target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/code_page.cpp
    ${CMAKE_CURRENT_LIST_DIR}/nls.cpp
    ${CMAKE_CURRENT_LIST_DIR}/number.cpp
    ${CMAKE_CURRENT_LIST_DIR}/string_service.cpp
    ${CMAKE_CURRENT_LIST_DIR}/transcoder.cpp)
