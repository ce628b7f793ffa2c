# cmake -DSOURCE=<file> -DTARGET=<file> -P CopyIfNewer.cmake
# Copies SOURCE to TARGET when TARGET is missing or older than SOURCE, so a
# copy the program has written to since is left alone.
if(NOT EXISTS "${TARGET}" OR "${SOURCE}" IS_NEWER_THAN "${TARGET}")
  get_filename_component(target_dir "${TARGET}" DIRECTORY)
  file(MAKE_DIRECTORY "${target_dir}")
  file(COPY_FILE "${SOURCE}" "${TARGET}")
endif()
