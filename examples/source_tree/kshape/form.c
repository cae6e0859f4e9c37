#include <shape.h>

int is_square(struct box box) { return box.width == box.height; }
