#include "lib/diagnostics/Error_messager.h"

// Reports before and after `main`, when only what the library has set up by itself is there.
static const struct REPORTING {
  STRING copy = STRING::EMPTY;
  REPORTING() { ERROR_MESSAGER::STATIC_MESSAGE(EMPTY + "early" + copy); }
  ~REPORTING() { ERROR_MESSAGER::STATIC_MESSAGE(copy + "late"); }
} reporting;

int main() { return 0; }
