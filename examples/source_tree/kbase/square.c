#include <base.h>

int square(int side) { return side * side; }
