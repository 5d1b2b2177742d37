#include <iostream>

#include "WbxCommand.h"

int main(int argc, char** argv) {
    return WbxMain(argc, argv, std::cout, std::cerr);
}
