#include <iostream>
#include <string>
#include <vector>

#include "cli/Comandi.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return vorn::cli::Esegui(args, std::cout);
}
