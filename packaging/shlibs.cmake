# Told to dpkg-shlibdeps: the SDL 1.2 that is built on SDL 2 will do as well.
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/debian/shlibs.local
     "libSDL-1.2 0 libsdl1.2debian (>= 1.2.15) | libsdl1.2-compat-shim\n")
