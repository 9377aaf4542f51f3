target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/fmt_module.cpp)
