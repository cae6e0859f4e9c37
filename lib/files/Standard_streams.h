#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

/// What a program does first so that its standard streams neither end it nor get into its files.
///
/// Nobody needs to read what it prints, and a file that grows beyond a limit is a failed write: unlike SIG_IGN, a
/// function is not inherited by programs that this one starts. Of descriptors 0 to 2, those that are closed are opened,
/// or else a file would take their place and receive messages; reading and writing them fails as before.
inline void prepare_standard_streams() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, [](int) {});
  for (int file = STDIN_FILENO; file <= STDERR_FILENO; ++file) {
    if (fcntl(file, F_GETFD) < 0) open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}
