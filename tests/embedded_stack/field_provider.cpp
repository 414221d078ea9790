// Offers one field until its standard input ends, which is at the latest when the test does:
// field_provider INSTANCE BYTE SIZE, where the field's value is SIZE times BYTE.
#include <cstdlib>
#include <iostream>
#include <limits>

#include "tests/embedded_stack/test_node.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: field_provider INSTANCE BYTE SIZE\n";
    return 1;
  }
  const auto number = [argv](int index) { return std::strtoul(argv[index], nullptr, 0); };
  const embedded_stack_test::Provider provider(
      embedded_stack_test::Bytes(number(3), static_cast<vsomeip::byte_t>(number(2))),
      static_cast<vsomeip::instance_t>(number(1)));
  std::cin.ignore(std::numeric_limits<std::streamsize>::max());
  return 0;
}
