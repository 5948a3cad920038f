# The places of installed files, and how the programs find the files that they open at run time.

include(GNUInstallDirs)

# The path from the folder of the programs to that of their data, so that they find it below any prefix. The build
# tree has a link in its place.
set(orvane_data_folder "${CMAKE_INSTALL_FULL_DATADIR}/orvane")
cmake_path(RELATIVE_PATH orvane_data_folder BASE_DIRECTORY "${CMAKE_INSTALL_FULL_BINDIR}"
  OUTPUT_VARIABLE ORVANE_DATA_FROM_PROGRAMS)
cmake_path(ABSOLUTE_PATH ORVANE_DATA_FROM_PROGRAMS BASE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}" NORMALIZE
  OUTPUT_VARIABLE orvane_data_in_build)
# The same for helper programs, which only the programs start. In the build tree, all programs share one folder.
set(ORVANE_HELPERS_FOLDER "${CMAKE_INSTALL_LIBEXECDIR}/orvane")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBEXECDIR BASE_DIRECTORY "${CMAKE_INSTALL_FULL_BINDIR}"
  OUTPUT_VARIABLE ORVANE_HELPERS_FROM_PROGRAMS)
string(APPEND ORVANE_HELPERS_FROM_PROGRAMS "/orvane")
file(MAKE_DIRECTORY "${orvane_data_in_build}")
file(CREATE_LINK "${PROJECT_SOURCE_DIR}/assets/demo" "${orvane_data_in_build}/demo" SYMBOLIC)

install(FILES "${PROJECT_SOURCE_DIR}/assets/demo/panel-8ch.flac" DESTINATION "${CMAKE_INSTALL_DATADIR}/orvane/demo")
