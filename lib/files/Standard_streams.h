#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

/// What a program does first so that its standard streams neither end it nor get into its files.
///
/// A reader that has gone away and a limit on the size of files become failed writes, by a function: unlike SIG_IGN, it
/// is not inherited by the programs that this one starts. Descriptors 0 to 2 are opened where they are closed, or else
/// a file would take their place and receive messages.
inline void prepare_standard_streams() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, [](int) {});
  int file = STDIN_FILENO;
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDWR);
  if (file >= 0) close(file);
}
