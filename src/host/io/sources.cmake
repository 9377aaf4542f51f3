target_sources(qvhost_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/block_file.cpp
    ${CMAKE_CURRENT_LIST_DIR}/file_name.cpp
    ${CMAKE_CURRENT_LIST_DIR}/io_module.cpp
    ${CMAKE_CURRENT_LIST_DIR}/syscalls.cpp)
