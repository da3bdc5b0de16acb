# tesk-warnings: the warnings that every target of this project is compiled with.
add_library(tesk-warnings INTERFACE)
target_compile_options(tesk-warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2 -Wcast-align -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi>
    $<$<BOOL:${TESK_WERROR}>:-Werror>
)
