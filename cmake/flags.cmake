# orv_flags: what every target of the project is compiled with.
# orv_kernel_flags: what the kernel library adds. Every unit may be entered from a caller with a 4-byte aligned
# stack, so functions that need 16 bytes realign; contraction and errno-setting are off because the order of
# operations is part of the interface; an unwritten C++ runtime is one less dependency.

add_library(orv_flags INTERFACE)
target_compile_options(orv_flags INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wshadow -Wpointer-arith -Wundef -Wvla -Werror>
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
# Windows' atof and friends drop digits in the old runtime; the replacement stdio also prints long double.
target_compile_definitions(orv_flags INTERFACE $<$<PLATFORM_ID:Windows>:__USE_MINGW_ANSI_STDIO=1>)
target_compile_definitions(orv_flags INTERFACE $<$<NOT:$<PLATFORM_ID:Windows>>:_FILE_OFFSET_BITS=64>)
target_compile_options(orv_flags INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-msse2 -mfpmath=sse -ffp-contract=off>)
if(WIN32)
  # The callers of a DLL promise a 4-byte aligned stack and no more.
  target_compile_options(orv_flags INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-mincoming-stack-boundary=2>)
endif()

add_library(orv_kernel_flags INTERFACE)
target_link_libraries(orv_kernel_flags INTERFACE orv_flags)
target_compile_options(orv_kernel_flags INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-msse4.1 -fvisibility=hidden -fno-math-errno -mincoming-stack-boundary=2>
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fvisibility-inlines-hidden>)

if(ORV_SANITIZE)
  # Arrays may lie at any address: this processor has no alignment that a plain load or store needs.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize=alignment -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(orv_flags INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:${sanitizers}>)
  target_link_options(orv_flags INTERFACE ${sanitizers})
endif()
