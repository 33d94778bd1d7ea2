#include "support/faults/ShortOfMemory.hpp"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> allowed =
    kNoLimit;  // NOLINT: what replaces the global operators has nowhere else to look

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t& /*as it is*/) noexcept {
  return size < allowed ? std::malloc(size) : nullptr;
}
void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace support {

ShortOfMemory::ShortOfMemory(std::size_t limit) { allowed = limit; }
ShortOfMemory::~ShortOfMemory() { allowed = kNoLimit; }

}  // namespace support
