# Writes the commit of the sources as a header, but only if it has changed, so that a build compiles nothing
# otherwise. Empty outside a repository, unless COMMIT gives one.
#     cmake -DSOURCE=FOLDER -DOUTPUT=FILE [-DCOMMIT=TEXT] -P WriteCommit.cmake
cmake_minimum_required(VERSION 3.25)
if(NOT COMMIT)
    execute_process(COMMAND git -C "${SOURCE}" describe --always --dirty --exclude "*"
                    OUTPUT_VARIABLE COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "#define BRINDLE_COMMIT \"@COMMIT@\"\n" @ONLY)
