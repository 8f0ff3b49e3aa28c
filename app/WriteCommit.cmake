# Writes the commit of the sources as a header, anew only when it is another one, so that a build compiles
# nothing for it otherwise. Empty outside of a repository, unless COMMIT names one.
#     cmake -DSOURCE=FOLDER -DOUTPUT=FILE [-DCOMMIT=TEXT] -P WriteCommit.cmake
cmake_minimum_required(VERSION 3.25)
if(NOT COMMIT)
    execute_process(COMMAND git -C "${SOURCE}" describe --always --dirty --exclude "*"
                    OUTPUT_VARIABLE COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "#define BRINDLE_COMMIT \"@COMMIT@\"\n" @ONLY)
