// The way to controller ports once more, as another program has it.
#define hostscope second_program
#include "platform/windows/ports.cpp"
