# quorvex_embed_text(<target> <file> <identifier> <namespace>)
#
# Compiles the text of <file> into <target> as `const char <identifier>[]`
# in <namespace>, regenerated whenever the file changes.
function(quorvex_embed_text target file identifier namespace)
  get_filename_component(absolute "${file}" ABSOLUTE)
  get_filename_component(name "${file}" NAME)
  set(output "${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.cpp")
  add_custom_command(
    OUTPUT "${output}"
    COMMAND ${CMAKE_COMMAND} -DINPUT=${absolute} -DOUTPUT=${output}
            -DNAME=${identifier} -DNAMESPACE=${namespace}
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake
    DEPENDS "${absolute}" ${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake
    COMMENT "Embedding ${name}"
    VERBATIM)
  target_sources(${target} PRIVATE "${output}")
endfunction()
