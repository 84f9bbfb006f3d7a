// Memory between two pages that may not be touched, to catch reads and writes beside an array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace orv::test {

inline constexpr size_t page = 4096;

// `pages` pages of readable and writable memory with a forbidden page on both sides.
struct GuardedPages {
    char* mapping;
    size_t bytes;

    explicit GuardedPages(size_t pages) : bytes(pages * page) {
#ifdef _WIN32
        mapping = static_cast<char*>(VirtualAlloc(nullptr, bytes + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
        if (!mapping || !VirtualAlloc(mapping + page, bytes, MEM_COMMIT, PAGE_READWRITE)) throw std::bad_alloc();
#else
        void* memory = mmap(nullptr, bytes + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        mapping = static_cast<char*>(memory);
        if (mprotect(mapping + page, bytes, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
#endif
    }
    ~GuardedPages() {
#ifdef _WIN32
        VirtualFree(mapping, 0, MEM_RELEASE);
#else
        munmap(mapping, bytes + 2 * page);
#endif
    }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    char* begin() const { return mapping + page; }
    char* end() const { return mapping + page + bytes; }
};

}  // namespace orv::test
