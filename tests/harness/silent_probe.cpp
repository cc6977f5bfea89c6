// Ends at once and prints nothing, whatever it is asked to run: with status 0, or with the
// status given as "--status=N". The runner must not count either as a passed test, and
// must say what it saw.
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--status=", 9) == 0) return std::atoi(argv[i] + 9);
    }
    return 0;
}
