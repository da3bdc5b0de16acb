# The warnings of this project. Every target but the service takes tesk-warnings. The service's log macros end in
# `, ##__VA_ARGS__`, which every compiler of the device accepts and strict C++17 does not.
add_library(tesk-service-warnings INTERFACE)
target_compile_options(tesk-service-warnings INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wformat=2 -Wcast-align -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi>
    $<$<BOOL:${TESK_WERROR}>:-Werror>
)

add_library(tesk-warnings INTERFACE)
target_link_libraries(tesk-warnings INTERFACE tesk-service-warnings)
target_compile_options(tesk-warnings INTERFACE -Wpedantic)
