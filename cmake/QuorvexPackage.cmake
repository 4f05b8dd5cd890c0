# The Debian package of what `cmake --install` puts in place (the program,
# its module, the frei0r plug-in and the editors' descriptions), built with
# `cpack -G DEB` in the build folder (scripts/package.sh):
# quorvex_<version>_amd64.deb, for `apt install ./quorvex_<version>_amd64.deb`.
set(CPACK_PACKAGE_NAME quorvex)
set(CPACK_PACKAGE_VENDOR Halvane)
set(CPACK_PACKAGE_CONTACT "Halvane <quorvex@halvane.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "Block Glitch and Bad TV video glitch effect, with a command-line host and a frei0r plug-in")
set(CPACK_PACKAGE_DESCRIPTION
  "Quorvex renders two glitch distortions, Block Glitch and Bad TV, through OpenGL fragment shaders, on a GPU or on Mesa's software renderer. The quorvex program applies them to pictures, image sequences and video; the frei0r plug-in brings them to ffmpeg, MLT (melt, Kdenlive, Shotcut) and GStreamer, with descriptions for Kdenlive's and Shotcut's effect panels.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
# dpkg-shlibdeps names the libraries the program and the modules link to.
# What they load without linking comes on top: Mesa's EGL and its drivers
# (llvmpipe where there is no GPU), and the font of the demo's labels.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libegl-mesa0, libgl1-mesa-dri")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ffmpeg, melt, kdenlive, shotcut, gstreamer1.0-plugins-bad")

include(CPack)
