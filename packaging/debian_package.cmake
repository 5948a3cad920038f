# The Debian package, which cpack builds from the installed files.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_VENDOR "ORVANE developers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ORVANE developers <support@orvane.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "live automatic microphone mixer")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"ORVANE does the fader riding of panel discussions, interviews, meetings
and choirs: anything with several open microphones. The active ones open
at once, the others are eased back, never gated shut, and the sum is held
at a chosen loudness.
.
It mixes up to 48 channels of one audio interface over PipeWire, JACK or
ALSA, with LV2 effects, scenes that MIDI notes recall, and sessions as
files. The package has the desktop application, orvane, and a program for
the command line, orvane-cli, that mixes live or faster than real time.")
# The linked libraries become dependencies by themselves. The packages below are used at run time: Qt's Wayland
# plugin, the program that opens web and mail addresses, a sound server, effects.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pipewire | jackd2, lv2-plugin")

include(CPack)
