#ifndef BASE_H
#define BASE_H

int square(int side);

#endif
