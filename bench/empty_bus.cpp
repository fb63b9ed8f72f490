// The emptiest program on a bus: `empty_bus NAME` announces itself and waits to be ended.

#include "announce.h"

#include <cstdlib>

#include <unistd.h>

int main(int argc, char** argv) {
    if (argc != 2 || wegslot::bench::announce(argv[1]) == nullptr) return EXIT_FAILURE;
    for (;;)
        pause();
}
