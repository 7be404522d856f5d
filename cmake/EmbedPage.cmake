# cmake -DPAGE=FOLDER -DOUTPUT=FILE -P EmbedPage.cmake: makes a C++ source of FOLDER/Page.html, with Page.css and Page.js put
# in for {{style}} and {{script}}, and what a Content-Security-Policy calls these two for {{style-source}} and
# {{script-source}}.
cmake_minimum_required(VERSION 3.22)

# to_base64(<variable> <hexadecimal digits of 32 bytes>)
function(to_base64 variable digits)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(digits "${digits}00") # three of these digits are two of the others
  set(text)
  foreach(place RANGE 0 63 3)
    string(SUBSTRING "${digits}" ${place} 3 group)
    math(EXPR first "0x${group} / 64")
    math(EXPR second "0x${group} % 64")
    string(SUBSTRING "${alphabet}" ${first} 1 first)
    string(SUBSTRING "${alphabet}" ${second} 1 second)
    string(APPEND text "${first}${second}")
  endforeach()
  string(SUBSTRING "${text}" 0 43 text)
  set(${variable} "${text}=" PARENT_SCOPE)
endfunction()

# read_part(<variable> <file>): the file with line feeds alone, whatever its checkout has.
function(read_part variable file)
  file(READ "${PAGE}/${file}" text)
  string(REPLACE "\r\n" "\n" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

read_part(page Page.html)
read_part(style Page.css)
read_part(script Page.js)
foreach(part style script)
  string(SHA256 digest "${${part}}")
  to_base64(digest ${digest})
  string(REPLACE "{{${part}}}" "${${part}}" page "${page}")
  string(REPLACE "{{${part}-source}}" "'sha256-${digest}'" page "${page}")
endforeach()
# What the program puts in (PageMaker::AppendPart).
string(REGEX MATCHALL "{{[^}]*}}" names "${page}")
list(REMOVE_DUPLICATES names)
foreach(name IN LISTS names)
  if(NOT name MATCHES "^{{(title|summary|machines|mode|tree|sections|data)}}$")
    message(FATAL_ERROR "${PAGE}: nobody puts ${name} in")
  endif()
endforeach()

file(WRITE "${OUTPUT}" "#include \"ViewTemplate.h\"

const std::string_view kViewTemplate = R\"ViewTemplate(${page})ViewTemplate\";
")
