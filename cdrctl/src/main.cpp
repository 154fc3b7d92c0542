#include "Commands.hpp"

int main(int argc, char** argv) { return cdrctl::run(argc, argv); }
