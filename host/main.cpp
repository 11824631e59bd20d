#include "host/Program.h"

int main(int argc, char** argv)
{
    return host::RunProgram(argc, argv);
}
