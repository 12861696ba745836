# What the compiler and the linker add so that a fault in a decoder ends the program instead of handing it over. Off with
# QXVIEW_HARDEN=OFF, and in sanitizer builds, which find the same faults earlier and do not go together with it.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()   # CMAKE_POSITION_INDEPENDENT_CODE alone compiles for it and does not link for it

function(qxview_compile_if_known flag)
  string(MAKE_C_IDENTIFIER "QXVIEW_HAS${flag}" known)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    add_compile_options(${flag})
  endif()
endfunction()

qxview_compile_if_known(-fstack-protector-strong)
# _FORTIFY_SOURCE takes an optimising build, and a distribution may have set it on its own.
add_compile_options($<$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>:-U_FORTIFY_SOURCE>
                    $<$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>:-D_FORTIFY_SOURCE=2>)
if(WIN32)
  # Addresses of their own at each start, no data that is run; the wide range of addresses is there in 64 bits alone.
  add_link_options(-fstack-protector-strong -Wl,--dynamicbase -Wl,--nxcompat)   # the first one names libssp
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_link_options(-Wl,--high-entropy-va)
  endif()
else()
  qxview_compile_if_known(-fstack-clash-protection)
  qxview_compile_if_known(-fcf-protection)   # x86: indirect branches and returns that the processor checks
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
