// Offers one field until SIGTERM: field_provider INSTANCE BYTE SIZE, where the field's value is SIZE times BYTE.
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/prctl.h>

#include "tests/embedded_stack/test_node.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: field_provider INSTANCE BYTE SIZE\n";
    return 1;
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // never outlives a test that failed
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  const auto number = [argv](int index) { return std::strtoul(argv[index], nullptr, 0); };
  const embedded_stack_test::Provider provider(
      embedded_stack_test::Bytes(number(3), static_cast<vsomeip::byte_t>(number(2))),
      static_cast<vsomeip::instance_t>(number(1)));
  int signal = 0;
  return sigwait(&signals, &signal);
}
