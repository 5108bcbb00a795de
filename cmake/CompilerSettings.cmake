add_compile_options(-Wall -Wextra -Wpedantic)
if(KV_WERROR)
    add_compile_options(-Werror)
endif()

if(KV_SANITIZE)
    add_compile_options(-fsanitize=${KV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KV_SANITIZE})
endif()
