#include "tests/support/Memory.h"

#include <cstdlib>
#include <new>

long allocationsLeft = -1;

void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
    return allocationsLeft-- == 0 ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
    void* memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*unused*/) noexcept { std::free(memory); }
