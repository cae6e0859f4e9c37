#include <frame.h>

const char* frame_name(void) { return "frame"; }
