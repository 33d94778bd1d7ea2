#include <exception>
#include <iostream>

#include "demo/DemoLibrary.hpp"

/// vantorix-demo-library FOLDER: makes a small library of our own music, once.
int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: vantorix-demo-library FOLDER\n";
    return 2;
  }
  try {
    engine::demo::MakeDemoLibrary(argv[1], [](const std::string& line) { std::cout << line << std::endl; });
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "vantorix-demo-library: " << failure.what() << '\n';
    return 1;
  }
}
