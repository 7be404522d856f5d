# cmake -DGUIDE=... -DEXAMPLE=... -P CheckGuide.cmake: fails unless the guide holds the example, word for word.
file(READ "${GUIDE}" guide)
file(READ "${EXAMPLE}" example)
string(FIND "${guide}" "```cpp\n${example}```\n" position)
if(position EQUAL -1)
  message(FATAL_ERROR "The code in ${GUIDE} is not that of ${EXAMPLE}")
endif()
