#include <stdio.h>

#include <frame.h>
#include <shape.h>

int main(void) {
  struct box box = {3, 4};
  printf("%s: %d\n", frame_name(), area(box));
  return 0;
}
