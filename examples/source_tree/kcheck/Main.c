#include <base.h>

int main(void) { return square(2) != 4; }
