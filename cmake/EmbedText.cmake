# cmake -DINPUT=<file> -DOUTPUT=<file.cpp> -DNAME=<identifier> -DNAMESPACE=<ns> -P EmbedText.cmake
#
# Writes a C++ source that holds the text of INPUT as the character array
# NAME, so that shaders can stay readable files of their own.
file(READ "${INPUT}" text)
if(text MATCHES "\\)embedded\"")
  message(FATAL_ERROR "${INPUT} contains the raw-string delimiter )embedded\"")
endif()
get_filename_component(source_name "${INPUT}" NAME)
file(WRITE "${OUTPUT}.tmp"
"// Generated from ${source_name} by EmbedText.cmake; edit that file instead.
namespace ${NAMESPACE} {
extern const char ${NAME}[];
const char ${NAME}[] = R\"embedded(${text})embedded\";
}
")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
