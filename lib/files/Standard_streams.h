#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

/// What a program does first so that its standard streams neither end it nor get into its files.
///
/// Nobody needs to read what it prints, and a file that grows beyond a limit is a failed write: unlike SIG_IGN, a
/// function is not inherited by programs that this one starts. Those of descriptors 0 to 2 that are closed are opened,
/// or else a file would take their place and receive messages.
inline void prepare_standard_streams() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, [](int) {});
  int file = STDIN_FILENO;
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDWR);
  if (file >= 0) close(file);
}
