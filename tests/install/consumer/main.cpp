// A program outside the source tree that uses the installed library.
#include <orvo/orvo.h>

#include <cstring>
#include <iostream>

int main() {
    const char* version = orvo::Version();
    std::cout << "orvo " << version << "\n";
    return std::strlen(version) > 0 ? 0 : 1;
}
