# Makes dpkg-shlibdeps name two packages, of which one is enough: SDL 1.2 itself, or sdl12-compat,
# which offers SDL 1.2 on top of SDL 2.
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/debian/shlibs.local
     "libSDL-1.2 0 libsdl1.2debian (>= 1.2.15) | libsdl1.2-compat-shim\n")
