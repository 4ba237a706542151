// Asks for the mark of a first instance: instance_probe.exe GLOBAL NAME. Prints the answer and
// keeps the mark until its input ends.
#include "app/single_instance.h"

#include <cstdio>
#include <cstdlib>

int wmain(int argc, wchar_t** argv) {
    if (argc != 3) return 2;
    SingleInstanceXP instance;
    std::printf("%d\n", instance.IsFirstInstance(_wtoi(argv[1]), argv[2]));
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
