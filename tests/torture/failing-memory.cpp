/// Preloaded into a program, lets one of the allocations after the start of main() fail: the one
/// whose number the environment variable FAILING holds. The file that TOLD names then gets the
/// library that asked for it; if none failed, the number of allocations.

#include <dlfcn.h>
#include <execinfo.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the C library's names
extern "C" {
// What the C library's own allocations are called inside it.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

using Main = int (*)(int, char**, char**);

std::atomic<bool> counts{false};
std::atomic<long> allocations{0};
long failing = 0;
Main mainFunction = nullptr;

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

void* addressOf(bool (*function)()) { return reinterpret_cast<void*>(function); }

bool contains(std::string_view text, const char* part) {
    return text.find(part) != std::string_view::npos;
}

bool fails();

/// The file of the code that asked for memory: the first caller outside this file and the C++
/// library, whose `new` it is. What ACE has the C library do is ACE's.
const char* asker() {
    std::array<void*, 16> callers = {};
    const int depth = backtrace(callers.data(), callers.size());
    Dl_info here = {};
    dladdr(addressOf(fails), &here);
    const char* first = nullptr;
    for (int i = 0; i < depth; ++i) {
        Dl_info caller = {};
        if (dladdr(callers.at(static_cast<std::size_t>(i)), &caller) == 0) continue;
        const std::string_view file = caller.dli_fname;
        if (caller.dli_fbase == here.dli_fbase || contains(file, "libstdc++")) continue;
        if (contains(file, "libACE")) return caller.dli_fname;
        if (first == nullptr) first = caller.dli_fname;
        if (!contains(file, "libc.so")) break;
    }
    return first == nullptr ? "unknown" : first;
}

bool fails() {
    if (!counts || ++allocations != failing) return false;
    counts = false;
    std::ofstream(variable("TOLD")) << asker() << "\n";
    errno = ENOMEM;
    return true;
}

int countingMain(int argc, char** argv, char** environment) {
    std::array<void*, 1> caller = {};
    backtrace(caller.data(), caller.size());  // allocates when it is called first
    failing = std::stol(variable("FAILING"));
    ::unsetenv("LD_PRELOAD");  // not for the programs that this one starts
    counts = true;
    const int status = mainFunction(argc, argv, environment);
    if (counts.exchange(false)) std::ofstream(variable("TOLD")) << allocations << "\n";
    return status;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return fails() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t number, std::size_t size) {
    return fails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* memory, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(memory, size);
}

// Stands before the C library's function of this name, which calls main().
int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(),
                      void (*loaderFini)(), void* stackEnd) {
    mainFunction = main;
    const auto real =
        reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return real(countingMain, argc, argv, init, fini, loaderFini, stackEnd);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
