# 32-bit Linux, built on a 64-bit x86 machine by its own compiler (Debian: g++-multilib and the libraries of zlib1g:i386,
# libzstd1:i386 and liblz4-1:i386, whose headers are the 64-bit packages').
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
foreach(library ZLIB=z.so.1 zstd=zstd.so.1 lz4=lz4.so.1)
  string(REPLACE "=" ";" library ${library})
  list(GET library 0 name)
  list(GET library 1 file)
  find_library(${name}_LIBRARY NAMES lib${file} PATHS /usr/lib/i386-linux-gnu /lib/i386-linux-gnu NO_DEFAULT_PATH)
endforeach()
