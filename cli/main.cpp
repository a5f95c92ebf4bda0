#include <cstring>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
  std::string a = argc > 1 ? argv[1] : "--help";
  if (a == "--version") {
    std::cout << "vorn " << VORN_VERSION << "\n";
    return 0;
  }
  std::cout << "Uso: vorn COMANDO [OPZIONI]\n";
  return a == "--help" ? 0 : 2;
}
