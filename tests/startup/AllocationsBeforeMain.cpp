// SPDX-License-Identifier: Apache-2.0
//
// usage: AllocationsBeforeMain LIBRARY...
//
// Prints every block of memory that one of these libraries asked for before `main`; status 1 if
// there is any, and 2 if a library is not loaded at all. It stands in front of the C library's
// functions and notes who called them; initialisers of other libraries may do as they like.

#include <dlfcn.h>
#include <link.h>
#include <unwind.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <iostream>
#include <set>
#include <string>

#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "tests/startup/GreedyInitialiser.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

struct Allocation {
  std::array<void*, 48> callers;
  std::size_t depth;
};

// Filled before anything of the C++ library is.
constinit std::array<Allocation, 8192> allocations{};
constinit std::size_t allocationCount = 0;
constinit bool mainHasBegun = false;
constinit bool isNoting = false;

_Unwind_Reason_Code noteCaller(_Unwind_Context* context, void* allocation) {
  auto& [callers, depth] = *static_cast<Allocation*>(allocation);
  if (depth == callers.size()) return _URC_END_OF_STACK;
  callers[depth++] = reinterpret_cast<void*>(_Unwind_GetIP(context));
  return _URC_NO_REASON;
}

void noteAllocation() {
  if (mainHasBegun || isNoting) return;
  isNoting = true;
  if (allocationCount < allocations.size())
    _Unwind_Backtrace(&noteCaller, &allocations[allocationCount]);
  ++allocationCount;
  isNoting = false;
}

std::string fileName(const char* path) {
  const std::string text = path;
  return text.substr(text.rfind('/') + 1);
}

int noteLibrary(dl_phdr_info* library, std::size_t, void* names) {
  static_cast<std::set<std::string>*>(names)->insert(fileName(library->dlpi_name));
  return 0;
}

std::set<std::string> loadedLibraries() {
  std::set<std::string> names;
  dl_iterate_phdr(&noteLibrary, &names);
  return names;
}

/// Whether a caller lies in one of the libraries; says so if it does.
bool isFrom(const std::set<std::string>& libraries, const Allocation& allocation) {
  for (std::size_t i = 0; i < allocation.depth; ++i) {
    Dl_info caller{};
    if (!dladdr(allocation.callers[i], &caller) || !libraries.contains(fileName(caller.dli_fname)))
      continue;
    std::cout << "an allocation before main in " << fileName(caller.dli_fname) << ", "
              << (caller.dli_sname ? caller.dli_sname : "a function without a name") << '\n';
    return true;
  }
  return false;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  noteAllocation();
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  noteAllocation();
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  noteAllocation();
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  noteAllocation();
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  noteAllocation();
  *block = __libc_memalign(alignment, size);
  return *block ? 0 : ENOMEM;
}

}  // extern "C"

int main(int argumentCount, char** arguments) {
  mainHasBegun = true;
  rvf::RVFCreditCardParser::classObject();
  greedyText();
  const std::set<std::string> libraries(arguments + 1, arguments + argumentCount);
  const std::set<std::string> loaded = loadedLibraries();
  for (const std::string& library : libraries) {
    if (loaded.contains(library)) continue;
    std::cout << library << " is not loaded\n";
    return 2;
  }
  bool isQuiet = true;
  for (std::size_t i = 0; i < std::min(allocationCount, allocations.size()); ++i)
    if (isFrom(libraries, allocations[i])) isQuiet = false;
  std::cout << allocationCount << " allocations before main, all told\n";
  if (allocationCount > allocations.size()) return 2;
  return isQuiet && !libraries.empty() ? 0 : 1;
}
