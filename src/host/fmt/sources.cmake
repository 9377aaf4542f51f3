target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/calendar.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fmt_module.cpp
    ${CMAKE_CURRENT_LIST_DIR}/formats.cpp
    ${CMAKE_CURRENT_LIST_DIR}/informats.cpp
    ${CMAKE_CURRENT_LIST_DIR}/numbers.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pattern.cpp
    ${CMAKE_CURRENT_LIST_DIR}/texts.cpp)
