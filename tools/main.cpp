#include <iostream>

#include "cli/cli.h"

int main(int argc, char** argv) { return orvo::cli::Run(argc, argv, std::cout, std::cerr); }
