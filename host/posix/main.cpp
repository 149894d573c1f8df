#include "host/command.h"

int main(int argc, char** argv) { return kvdm::RunCommandLine({argv + 1, argv + argc}); }
