#include <cstdio>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#define ORVO_ISATTY _isatty
#define ORVO_FILENO _fileno
#else
#include <unistd.h>
#define ORVO_ISATTY isatty
#define ORVO_FILENO fileno
#endif

#include "cli/cli.h"

int main(int argc, char** argv) {
    // A progress bar is drawn only where someone watches it: on a terminal, never into a file
    // or a pipe that collects the error output.
    const bool terminal = ORVO_ISATTY(ORVO_FILENO(stderr)) != 0;
    orvo::cli::Io io{std::cout, std::cerr, std::cin, terminal};
    return orvo::cli::Run(argc, argv, io);
}
