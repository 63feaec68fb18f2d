// Locales found again and made.
#include "bench/common.h"

int main(int argc, char** argv) { return vxbench::run("locale", argc, argv); }
