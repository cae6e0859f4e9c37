#ifndef SHAPE_H
#define SHAPE_H

#include <base.h>

struct box {
  int width, height;
};

int area(struct box box);
int is_square(struct box box);

#endif
