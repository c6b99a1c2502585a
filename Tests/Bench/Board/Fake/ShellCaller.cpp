// A program that has a shell run its argument, as one preloaded with the board would.
#include <sys/wait.h>

#include <cstdlib>

int main(int count, char** arguments) {
    const int status = count == 2 ? system(arguments[1]) : -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 126;
}
